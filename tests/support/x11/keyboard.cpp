// SPDX-License-Identifier: MIT

#include "support/x11/keyboard.h"

#include <xcb/xtest.h>

#include <algorithm>
#include <array>
#include <stdexcept>

namespace tessarel::x11test {

namespace {

constexpr std::array<std::uint16_t, 4> kLockStates = {0, XCB_MOD_MASK_LOCK, XCB_MOD_MASK_2,
                                                      XCB_MOD_MASK_LOCK | XCB_MOD_MASK_2};

} // namespace

Keyboard::Keyboard(const XServer& server, Observer& observer) : m_server(server), m_observer(observer) {
    xcb_connection_t* x = m_observer.x().get();
    const auto version = own(xcb_test_get_version_reply(x, xcb_test_get_version(x, 2, 2), nullptr));
    if (!version)
        throw std::runtime_error("no XTEST");
}

void Keyboard::fake(std::uint8_t type, xcb_keycode_t key) {
    xcb_test_fake_input(m_observer.x().get(), type, key, XCB_CURRENT_TIME, XCB_WINDOW_NONE, 0, 0, 0);
}

void Keyboard::press(const Combination& combination) {
    for (const auto& [mask, key] : kModifierKeys)
        if ((combination.modifiers & mask) != 0)
            fake(XCB_KEY_PRESS, key);
    fake(XCB_KEY_PRESS, combination.key);
    fake(XCB_KEY_RELEASE, combination.key);
    for (auto modifier = kModifierKeys.rbegin(); modifier != kModifierKeys.rend(); ++modifier)
        if ((combination.modifiers & modifier->first) != 0)
            fake(XCB_KEY_RELEASE, modifier->second);
    m_observer.x().roundTrip();
}

std::uint16_t Keyboard::state() {
    xcb_connection_t* x = m_observer.x().get();
    const auto pointer = own(xcb_query_pointer_reply(x, xcb_query_pointer(x, m_observer.root()), nullptr));
    return pointer ? pointer->mask : std::uint16_t{0};
}

bool Keyboard::setLock(xcb_keycode_t key, std::uint16_t mask, bool on) {
    if (((state() & mask) != 0) != on)
        press({key, 0});
    return m_observer.waitUntil([&] { return ((state() & mask) != 0) == on; });
}

void Keyboard::setLayout(const std::string& layout) {
    runToEnd({"setxkbmap", layout}, m_server.environment());
}

bool Keyboard::isFree() {
    xcb_connection_t* x = m_observer.x().get();
    xcb_grab_server(x);
    const auto attempt = xcb_grab_keyboard(x, 0, m_observer.root(), XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC,
                                           XCB_GRAB_MODE_ASYNC);
    xcb_ungrab_keyboard(x, XCB_CURRENT_TIME);
    xcb_ungrab_server(x);
    const auto reply = own(xcb_grab_keyboard_reply(x, attempt, nullptr));
    return reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
}

bool Keyboard::held(const Combination& combination) {
    std::array<Combination, kLockStates.size()> withLocks;
    std::transform(kLockStates.begin(), kLockStates.end(), withLocks.begin(), [&](std::uint16_t locks) {
        return Combination{combination.key, static_cast<std::uint16_t>(combination.modifiers | locks)};
    });
    return allHeld(m_observer.x(), withLocks);
}

} // namespace tessarel::x11test
