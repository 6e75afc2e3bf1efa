// SPDX-License-Identifier: MIT

#include "support/keyboard.h"

#include <xcb/xtest.h>

#include <stdexcept>
#include <thread>

namespace tessarel::bench {

namespace {

using namespace std::chrono_literals;

constexpr auto kTimeToNotice = 5ms;
constexpr auto kStartTimeout = 10s;

} // namespace

Keyboard::Keyboard() {
    const std::uint32_t off = XCB_AUTO_REPEAT_MODE_OFF;
    xcb_change_keyboard_control(m_connection.get(), XCB_KB_AUTO_REPEAT_MODE, &off);
    m_connection.roundTrip();
}

void Keyboard::fake(std::uint8_t type, std::uint8_t keyCode) {
    xcb_test_fake_input(m_connection.get(), type, keyCode, XCB_CURRENT_TIME, m_connection.root(), 0, 0, 0);
}

void Keyboard::holdModifiers() {
    fake(XCB_KEY_PRESS, key::kControl);
    fake(XCB_KEY_PRESS, key::kAlt);
    m_connection.roundTrip();
    std::this_thread::sleep_for(kTimeToNotice);
}

Clock::time_point Keyboard::press(std::span<const std::uint8_t> keys) {
    for (const auto key : keys.first(keys.size() - 1)) {
        fake(XCB_KEY_PRESS, key);
        fake(XCB_KEY_RELEASE, key);
    }
    fake(XCB_KEY_PRESS, keys.back());
    const auto pressed = Clock::now();
    m_connection.flush();
    return pressed;
}

void Keyboard::tap(std::uint8_t key) {
    fake(XCB_KEY_PRESS, key);
    fake(XCB_KEY_RELEASE, key);
    m_connection.flush();
}

void Keyboard::release(std::uint8_t key) {
    fake(XCB_KEY_RELEASE, key);
    releaseModifiers();
}

void Keyboard::releaseModifiers() {
    fake(XCB_KEY_RELEASE, key::kAlt);
    fake(XCB_KEY_RELEASE, key::kControl);
    m_connection.roundTrip();
    std::this_thread::sleep_for(kTimeToNotice);
}

void waitUntilHeld(const Connection& connection, std::span<const Combination> combinations) {
    const auto end = Clock::now() + kStartTimeout;
    while (!allHeld(connection, combinations)) {
        if (Clock::now() > end)
            throw std::runtime_error("a program did not claim its keys");
        std::this_thread::sleep_for(1ms);
    }
}

} // namespace tessarel::bench
