// SPDX-License-Identifier: MIT

#include "platform/plasma/keys/global_shortcuts.h"

#include "model/action_id.h"
#include "model/call_on_end.h"
#include "model/config.h"
#include "platform/plasma/keys/shortcut_keys.h"
#include "platform/wayland/bus_names.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace tessarel::plasma {

namespace {

constexpr const char* kService = "org.kde.kglobalaccel";
constexpr const char* kPath = "/kglobalaccel";
constexpr const char* kInterface = "org.kde.KGlobalAccel";
constexpr const char* kComponent = "tessarel";
constexpr const char* kComponentPath = "/component/tessarel";
constexpr const char* kComponentInterface = "org.kde.kglobalaccel.Component";

/// Sets exactly the given keys, whatever the desktop remembers of an earlier run.
constexpr std::int64_t kSetPresent = 0x2;
constexpr std::int64_t kNoAutoloading = 0x4;

/// Returns the name of the shortcut, by which the desktop knows it.
std::string nameOf(std::uint32_t id) {
    return id < ActionID::allCases.size() ? std::string(ActionID::allCases[id].rawValue())
                                          : "hotkey" + std::to_string(id);
}

/// Returns what identifies a shortcut: the names of program and shortcut, and their texts for the user.
std::vector<std::string> identityOf(std::uint32_t id) {
    const std::string name = nameOf(id);
    const std::string title =
        id < ActionID::allCases.size() ? std::string(ActionID::allCases[id].title()) : name;
    return {kComponent, name, std::string(Config::appName), title};
}

wayland::BusCall call(std::string member, std::string signature, std::vector<wayland::BusValue> values) {
    return {kService, kPath, kInterface, std::move(member), std::move(signature), std::move(values)};
}

wayland::BusCall setKeys(std::uint32_t id, std::vector<std::int64_t> keys) {
    return call("setShortcut", "asaiu", {identityOf(id), std::move(keys), kSetPresent | kNoAutoloading});
}

/// Returns the call that keeps all shortcuts of the desktop from working, or lets them work again.
wayland::BusCall blocked(bool isBlocked) {
    return call("blockGlobalShortcuts", "b", {std::int64_t{isBlocked}});
}

} // namespace

GlobalShortcuts::GlobalShortcuts(wayland::BusLink& link, KeyboardLayout& layout)
    : m_link(link), m_layout(layout),
      m_signals(link.onSignal(
          {.sender = kService, .path = kComponentPath, .interface = kComponentInterface, .member = {}},
          [this](const wayland::BusMessage& signal) { handle(signal); })),
      m_foreignChanges(link.onSignal(
          {.sender = kService, .path = kPath, .interface = kInterface, .member = "yourShortcutsChanged"},
          [this](const wayland::BusMessage& signal) { followSettings(signal); })),
      m_serviceChanges(wayland::onOwnerChanged(link, kService,
                                               [this](const std::string& owner) {
                                                   if (!owner.empty())
                                                       announceAll();
                                               })),
      m_layoutChanges(layout.onChange([this] { followLayout(); })) {}

GlobalShortcuts::~GlobalShortcuts() {
    while (!m_shortcuts.empty())
        release(m_shortcuts.front().serial);
    if (m_blocks > 0)
        setBlocked(false);
}

void GlobalShortcuts::releaseLeftovers(std::chrono::milliseconds patience) {
    const auto hasReply = std::make_shared<bool>(false); // shared, because the reply may come after the wait
    m_link.call(
        blocked(false),
        [this, hasReply, alive = m_lifetime.watch()](const wayland::BusMessage&) {
            *hasReply = true;
            if (!alive.expired())
                review();
        },
        wayland::BusLink::Delivery::Urgent);
    m_link.waitUntil([&] { return *hasReply || m_link.isLost(); }, patience);
}

/// Asks for all shortcuts under the program's name. To be called when Plasma has handled the first
/// registration: it refuses a call to an object that is not there yet before it handles the calls that make
/// the object.
void GlobalShortcuts::review() {
    m_link.call({kService, kComponentPath, kComponentInterface, "shortcutNames"},
                [this, alive = m_lifetime.watch()](const wayland::BusMessage& reply) {
                    if (!alive.expired())
                        unregisterOthers(reply.value<std::vector<std::string>>(0));
                });
}

/// Takes back the shortcuts with these names that this run has not registered, and requests the keys again
/// that one of them may have had.
void GlobalShortcuts::unregisterOthers(const std::vector<std::string>& names) {
    for (const std::string& name : names) {
        if (withName(name) == nullptr)
            m_link.call(call("unregister", "ss", {kComponent, name}));
    }
    retryTaken();
}

std::optional<std::int32_t> GlobalShortcuts::keyOf(const HotKeyRequest& request) const {
    return shortcutKey(m_layout.keymap(), m_layout.index(), request.keyCode, request.mods);
}

/// Registers the shortcuts again whose keys type other symbols than before.
void GlobalShortcuts::followLayout() {
    std::vector<Shortcut*> changed;
    for (Shortcut& shortcut : m_shortcuts) {
        const auto key = keyOf(shortcut.request).value_or(0);
        if (std::exchange(shortcut.key, key) != key)
            changed.push_back(&shortcut);
    }
    // All are given back first, because one may get the symbol that another one has.
    for (const Shortcut* const shortcut : changed)
        m_link.call(setKeys(shortcut->request.hotKey.id, {}));
    for (const Shortcut* const shortcut : changed)
        send(*shortcut);
}

SubscriptionPtr GlobalShortcuts::blockAll() {
    if (m_blocks++ == 0)
        setBlocked(true);
    return callOnEnd([this, alive = m_lifetime.watch()] {
        if (!alive.expired() && --m_blocks == 0)
            setBlocked(false);
    });
}

void GlobalShortcuts::setBlocked(bool isBlocked) {
    m_link.call(blocked(isBlocked));
}

void GlobalShortcuts::deliver() {
    m_isHoldingBack = false;
    for (const std::uint32_t id : std::exchange(m_heldBack, {}))
        m_handlers.send(id);
}

void GlobalShortcuts::drop() {
    m_isHoldingBack = false;
    m_heldBack.clear();
}

SubscriptionPtr GlobalShortcuts::installHandler(std::function<void(std::uint32_t id)> pressed) {
    return m_handlers.connect(std::move(pressed));
}

std::vector<SubscriptionPtr> GlobalShortcuts::registerHotKeys(std::span<const HotKeyRequest> requests) {
    std::vector<SubscriptionPtr> claims;
    claims.reserve(requests.size());
    for (const HotKeyRequest& request : requests)
        claims.push_back(claim(request));
    return claims;
}

/// Returns null if there is no such key, or if it has been claimed already.
SubscriptionPtr GlobalShortcuts::claim(const HotKeyRequest& request) {
    const auto key = keyOf(request);
    const auto isSame = [&](const Shortcut& shortcut) {
        return shortcut.request.keyCode == request.keyCode && shortcut.request.mods == request.mods;
    };
    if (!key || std::any_of(m_shortcuts.begin(), m_shortcuts.end(), isSame))
        return nullptr;
    const std::size_t serial = m_nextSerial++;
    m_shortcuts.push_back({.serial = serial, .request = request, .key = *key});
    announce(m_shortcuts.back());
    return callOnEnd([this, serial, alive = m_lifetime.watch()] {
        if (!alive.expired())
            release(serial);
    });
}

void GlobalShortcuts::announce(const Shortcut& shortcut) {
    m_link.call(call("doRegister", "as", {identityOf(shortcut.request.hotKey.id)}));
    send(shortcut);
}

void GlobalShortcuts::announceAll() {
    for (const Shortcut& shortcut : m_shortcuts)
        announce(shortcut);
}

void GlobalShortcuts::send(const Shortcut& shortcut) {
    if (shortcut.key == 0)
        return setTaken(shortcut.serial, true);
    compare(shortcut, setKeys(shortcut.request.hotKey.id, {shortcut.key}));
}

/// Sends a call that returns which keys the shortcut has. It is taken unless its own key is among them.
void GlobalShortcuts::compare(const Shortcut& shortcut, wayland::BusCall call) {
    m_link.call(std::move(call), [this, serial = shortcut.serial, key = std::int64_t{shortcut.key},
                                  alive = m_lifetime.watch()](const wayland::BusMessage& reply) {
        const Shortcut* const present = alive.expired() ? nullptr : withSerial(serial);
        if (present == nullptr || present->key != key) // the layout has changed since
            return;
        const auto keys = reply.value<std::vector<std::int64_t>>(0);
        setTaken(serial, std::find(keys.begin(), keys.end(), key) == keys.end());
    });
}

/// Reads the keys of a shortcut that the user or another program has changed. What this program sets, Plasma
/// does not report. The new keys in the signal are of a type that `BusMessage` leaves out.
void GlobalShortcuts::followSettings(const wayland::BusMessage& signal) {
    const auto identity = signal.value<std::vector<std::string>>(0);
    if (identity.size() < 2 || identity[0] != kComponent)
        return;
    const Shortcut* const shortcut = withName(identity[1]);
    if (shortcut != nullptr && shortcut->key != 0)
        compare(*shortcut, call("shortcut", "as", {identity}));
}

GlobalShortcuts::Shortcut* GlobalShortcuts::withSerial(std::size_t serial) {
    const auto found = std::find_if(m_shortcuts.begin(), m_shortcuts.end(),
                                    [serial](const Shortcut& shortcut) { return shortcut.serial == serial; });
    return found == m_shortcuts.end() ? nullptr : &*found;
}

GlobalShortcuts::Shortcut* GlobalShortcuts::withName(const std::string& name) {
    const auto found =
        std::find_if(m_shortcuts.begin(), m_shortcuts.end(), [&name](const Shortcut& shortcut) {
            return nameOf(shortcut.request.hotKey.id) == name;
        });
    return found == m_shortcuts.end() ? nullptr : &*found;
}

void GlobalShortcuts::setTaken(std::size_t serial, bool isTaken) {
    Shortcut* const shortcut = withSerial(serial);
    if (shortcut != nullptr && std::exchange(shortcut->isTaken, isTaken) != isTaken)
        m_takenChange.send();
}

void GlobalShortcuts::release(std::size_t serial) {
    const Shortcut* const shortcut = withSerial(serial);
    if (shortcut == nullptr)
        return;
    m_link.call(call("unregister", "ss", {kComponent, nameOf(shortcut->request.hotKey.id)}));
    std::erase_if(m_shortcuts, [serial](const Shortcut& one) { return one.serial == serial; });
}

std::vector<std::uint32_t> GlobalShortcuts::taken() const {
    std::vector<std::uint32_t> ids;
    for (const Shortcut& shortcut : m_shortcuts) {
        if (shortcut.isTaken)
            ids.push_back(shortcut.request.hotKey.id);
    }
    return ids;
}

void GlobalShortcuts::retryTaken() {
    for (const Shortcut& shortcut : m_shortcuts) {
        if (shortcut.isTaken)
            send(shortcut);
    }
}

SubscriptionPtr GlobalShortcuts::onTakenChange(std::function<void()> changed) {
    return m_takenChange.connect(std::move(changed));
}

void GlobalShortcuts::handle(const wayland::BusMessage& signal) {
    const bool isPress = signal.member == "globalShortcutPressed";
    if (!isPress && signal.member != "globalShortcutReleased")
        return;
    Shortcut* const shortcut = withName(signal.value<std::string>(1));
    if (shortcut == nullptr)
        return;
    const bool wasHeld = std::exchange(shortcut->isHeld, isPress);
    if (!isPress || wasHeld)
        return;
    if (m_isHoldingBack)
        m_heldBack.push_back(shortcut->request.hotKey.id);
    else
        m_handlers.send(shortcut->request.hotKey.id);
}

} // namespace tessarel::plasma
