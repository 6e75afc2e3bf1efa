// SPDX-License-Identifier: MIT

#include "platform/x11/input/hot_keys.h"

#include "model/call_on_end.h"
#include "platform/x11/input/lock_modifiers.h"
#include "platform/x11/input/modifier_flags.h"
#include "platform/xkb/keycode_table.h"

#include <algorithm>
#include <utility>

namespace tessarel::x11 {

namespace {

/// Returns the lock modifiers that a hot key ignores: all of them, except those that share a bit with Shift,
/// Control, Mod1 or Mod4, which would make combinations with that modifier indistinguishable.
std::uint16_t ignoredLocks(Connection& connection) {
    return static_cast<std::uint16_t>(lockModifiers(connection) & ~kAllModifiers);
}

/// Calls `use` with every subset of the bits of `mask`, including the empty one. The order is always the
/// same.
template <class Use>
void forEachSubset(std::uint16_t mask, Use use) {
    std::uint16_t subset = 0;
    do {
        use(subset);
        subset = static_cast<std::uint16_t>((subset - mask) & mask); // the next larger subset, then 0
    } while (subset != 0);
}

} // namespace

X11HotKeys::X11HotKeys(Connection& connection)
    : m_connection(connection), m_keyboard(connection), m_locks(ignoredLocks(connection)),
      m_events(connection.onEvent([this](const Connection::Event& event) { handle(event); })) {}

X11HotKeys::~X11HotKeys() {
    for (const Grab& grab : m_grabs)
        release(grab);
    m_connection.flush();
}

SubscriptionPtr X11HotKeys::installHandler(std::function<void(std::uint32_t id)> pressed) {
    return m_handlers.connect(std::move(pressed));
}

std::vector<SubscriptionPtr> X11HotKeys::registerHotKeys(std::span<const HotKeyRequest> requests) {
    const std::size_t before = m_grabs.size();
    std::vector<SubscriptionPtr> claims;
    claims.reserve(requests.size());
    for (const HotKeyRequest& request : requests) {
        const auto wanted = combination(request);
        // The server lets one client grab the same combination twice, so duplicates are rejected here.
        if (!wanted || isRegistered(*wanted)) {
            claims.push_back(nullptr);
            continue;
        }
        claims.push_back(claim(m_nextSerial));
        m_grabs.push_back({m_nextSerial++, *wanted, request.hotKey.id});
    }
    std::vector<Grab*> added;
    for (Grab& grab : std::span(m_grabs).subspan(before))
        added.push_back(&grab);
    acquire(added);
    return claims;
}

std::vector<std::uint32_t> X11HotKeys::taken() const {
    std::vector<std::uint32_t> ids;
    for (const Grab& grab : m_grabs) {
        if (!grab.isGranted)
            ids.push_back(grab.id);
    }
    return ids;
}

void X11HotKeys::retryTaken() {
    std::vector<Grab*> wanted;
    for (Grab& grab : m_grabs) {
        if (!grab.isGranted)
            wanted.push_back(&grab);
    }
    acquire(wanted);
    if (std::ranges::any_of(wanted, &Grab::isGranted))
        m_takenChange.send();
}

SubscriptionPtr X11HotKeys::onTakenChange(std::function<void()> changed) {
    return m_takenChange.connect(std::move(changed));
}

/// Returns a claim, which ends the registration on destruction. It refers to the grab by serial number,
/// because the grab moves in memory when an earlier one ends.
SubscriptionPtr X11HotKeys::claim(std::size_t serial) {
    return callOnEnd([this, alive = m_lifetime.watch(), serial] {
        if (!alive.expired())
            releaseClaim(serial);
    });
}

std::optional<X11HotKeys::Combination> X11HotKeys::combination(const HotKeyRequest& request) {
    const auto keycode = xkb::keycodeOf(request.keyCode);
    const auto modifiers = modifierMask(request.mods);
    if (!keycode || !modifiers)
        return std::nullopt;
    return Combination{*keycode, *modifiers};
}

bool X11HotKeys::isRegistered(const Combination& combination) const {
    return std::ranges::find(m_grabs, combination, &Grab::combination) != m_grabs.end();
}

/// Requests the grabs, which must not be granted yet. A grab that another client holds fails with BadAccess.
/// All requests are sent before the first result is read: one round trip.
void X11HotKeys::acquire(std::span<Grab* const> wanted) {
    std::vector<xcb_void_cookie_t> cookies;
    for (const Grab* const grab : wanted)
        send(*grab, cookies);

    auto cookie = cookies.begin();
    for (Grab* const grab : wanted) {
        grab->isGranted = true;
        // The cookies are in the order in which `send` visited the same subsets.
        forEachSubset(m_locks, [&](std::uint16_t) { grab->isGranted &= m_connection.succeeds(*cookie++); });
    }
    for (const Grab* const grab : wanted) {
        if (!grab->isGranted)
            release(*grab); // some of its lock states may have been granted
    }
    m_connection.flush();
}

void X11HotKeys::send(const Grab& grab, std::vector<xcb_void_cookie_t>& cookies) {
    forEachSubset(m_locks, [&](std::uint16_t locks) {
        const auto modifiers = static_cast<std::uint16_t>(grab.combination.modifiers | locks);
        cookies.push_back(xcb_grab_key_checked(m_connection.xcb(), 0, m_connection.root(), modifiers,
                                               grab.combination.keycode, XCB_GRAB_MODE_ASYNC,
                                               XCB_GRAB_MODE_ASYNC));
    });
}

void X11HotKeys::release(const Grab& grab) {
    forEachSubset(m_locks, [&](std::uint16_t locks) {
        xcb_ungrab_key(m_connection.xcb(), grab.combination.keycode, m_connection.root(),
                       static_cast<std::uint16_t>(grab.combination.modifiers | locks));
    });
}

void X11HotKeys::releaseClaim(std::size_t serial) {
    const auto grab = std::ranges::find(m_grabs, serial, &Grab::serial);
    if (grab == m_grabs.end())
        return;
    release(*grab);
    m_connection.flush();
    m_grabs.erase(grab);
}

void X11HotKeys::handle(const Connection::Event& event) {
    // Synthetic events from SendEvent have the top bit set and are ignored: only real keys trigger actions.
    if (event.response_type == XCB_KEY_PRESS)
        handlePress(reinterpret_cast<const xcb_key_press_event_t&>(event));
    else if (event.response_type == XCB_KEY_RELEASE)
        m_keysDown.release(reinterpret_cast<const xcb_key_release_event_t&>(event).detail);
    else if (m_keyboard.isMappingChange(event))
        handleMappingChange();
}

void X11HotKeys::handlePress(const xcb_key_press_event_t& press) {
    if (!m_keysDown.press(press.detail))
        return;
    const Combination pressed{press.detail, static_cast<std::uint16_t>(press.state & kAllModifiers)};
    const auto grab = std::ranges::find(m_grabs, pressed, &Grab::combination);
    if (grab != m_grabs.end() && grab->isGranted)
        m_handlers.send(grab->id);
}

/// Grabs are on keycodes, which a new mapping does not move. The lock keys may have moved to other modifiers,
/// however; then every granted combination has to be grabbed again.
void X11HotKeys::handleMappingChange() {
    const std::uint16_t locks = ignoredLocks(m_connection);
    if (locks == m_locks)
        return;
    std::vector<Grab*> granted;
    for (Grab& grab : m_grabs) {
        if (grab.isGranted)
            granted.push_back(&grab);
    }
    for (const Grab* const grab : granted)
        release(*grab);
    m_locks = locks;
    acquire(granted);
    if (!std::ranges::all_of(granted, &Grab::isGranted))
        m_takenChange.send();
}

} // namespace tessarel::x11
