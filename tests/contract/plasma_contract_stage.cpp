// SPDX-License-Identifier: MIT

#include "contract/plasma_contract_stage.h"

#include "model/call_on_end.h"
#include "support/x11/deadline.h"

#include <QEventLoop>

#include <algorithm>
#include <stdexcept>
#include <unistd.h>
#include <utility>

namespace tessarel::contract {

using plasmatest::SeenWindow;

namespace {

constexpr std::size_t kSecondDisplay = 1;
constexpr const char* kShortcuts = "org.kde.kglobalaccel";

} // namespace

void require(bool holds, const char* what) {
    if (!holds)
        throw std::runtime_error(std::string("the test desktop is not as expected: no ") + what);
}

PlasmaStage& PlasmaStage::shared() {
    static PlasmaStage stage;
    return stage;
}

PlasmaStage::PlasmaStage() {
    for (const auto& [name, value] : m_session.environment())
        qputenv(name.c_str(), value.c_str());
    m_application.emplace(m_argumentCount, m_arguments.data());
}

void PlasmaStage::reset() {
    if (!std::exchange(m_isComplete, true))
        m_session.outputs().setUp(kSecondDisplay, {.x = 1440});
}

void PlasmaStage::disconnectSecondDisplay() {
    m_isComplete = false;
    m_session.outputs().setUp(kSecondDisplay, {.isEnabled = false});
}

void PlasmaStage::change(const std::string& title, const std::string& script) {
    m_session.probe().run("workspace.clientList().filter((c) => c.caption === \"" + title +
                          "\").forEach((w) => { " + script + " });");
}

const SeenWindow* PlasmaStage::find(const std::string& title) {
    const auto& windows = m_session.probe().windows();
    const auto found = std::find_if(windows.begin(), windows.end(),
                                    [&](const SeenWindow& window) { return window.title == title; });
    return found == windows.end() ? nullptr : &*found;
}

bool PlasmaStage::runLoopUntil(const std::function<bool()>& holds) {
    const x11test::Deadline deadline;
    QEventLoop loop;
    while (!holds()) {
        if (deadline.passed())
            return false;
        loop.processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

void PlasmaStage::focusOwnWindow() {
    constexpr const char* kTitle = "own window";
    m_window.emplace();
    m_window->setTitle(kTitle);
    m_window->resize(400, 300);
    m_window->show();
    // KWin decides alone which new window gets the focus.
    const auto hasFocus = [this] { return QGuiApplication::focusWindow() == &*m_window; };
    require(runLoopUntil([&] { return m_window->isExposed(); }), "own window");
    change(kTitle, "workspace.activeClient = w");
    require(runLoopUntil(hasFocus), "focus in an own window");
}

void PlasmaStage::closeOwnWindow() {
    m_window.reset();
    QEventLoop loop;
    while (loop.processEvents())
        continue;
}

PlasmaLine::PlasmaLine(const std::string& address) : m_link(address) {
    m_readable = m_queue.onReadable(m_link.fileDescriptor(), [this] { m_link.dispatch(); });
}

void PlasmaLine::roundTrip() {
    bool hasReply = false;
    m_link.call({"org.kde.KWin", "/KWin", "org.kde.KWin", "currentDesktop"},
                [&hasReply](const wayland::BusMessage&) { hasReply = true; });
    require(PlasmaStage::runLoopUntil([&] { return hasReply; }), "reply from KWin");
}

SubscriptionPtr ShortcutHolder::hold(std::uint32_t keyCode, std::uint32_t mods) {
    const auto key = plasma::shortcutKey(m_keymap, 0, keyCode, mods);
    require(key.has_value(), "key with this virtual key code");
    constexpr std::int64_t kSetWithoutAutoloading = 6;
    const std::string name = std::to_string(*key);
    const std::vector<std::string> identity{"another", name, "Another", name};
    (void)request("doRegister", "as", {identity});
    const auto reply =
        request("setShortcut", "asaiu", {identity, std::vector<std::int64_t>{*key}, kSetWithoutAutoloading});
    const auto granted = reply.value<std::vector<std::int64_t>>(0);
    if (std::find(granted.begin(), granted.end(), *key) == granted.end())
        return nullptr;
    return callOnEnd([this, name] { (void)request("unregister", "ss", {std::string("another"), name}); });
}

wayland::BusMessage ShortcutHolder::request(const std::string& member, const std::string& signature,
                                            std::vector<wayland::BusValue> values) {
    std::optional<wayland::BusMessage> reply;
    m_link.call(
        {kShortcuts, "/kglobalaccel", "org.kde.KGlobalAccel", member, signature, std::move(values)},
        [&reply](const wayland::BusMessage& message) { reply = message; },
        wayland::BusLink::Delivery::Urgent);
    require(m_link.waitUntil([&] { return reply.has_value(); }, x11test::kPatience),
            "reply from the global shortcuts");
    return *reply;
}

} // namespace tessarel::contract
