// SPDX-License-Identifier: MIT

#include "support/x11/mouse.h"

#include "support/x11/keyboard.h"

#include <xcb/xtest.h>

#include <stdexcept>

namespace tessarel::x11test {

Mouse::Mouse(Observer& observer) : m_observer(observer) {
    xcb_connection_t* x = m_observer.x().get();
    if (!own(xcb_test_get_version_reply(x, xcb_test_get_version(x, 2, 2), nullptr)))
        throw std::runtime_error("no XTEST");
}

void Mouse::fake(std::uint8_t type, std::uint8_t detail, int x, int y) {
    xcb_test_fake_input(m_observer.x().get(), type, detail, XCB_CURRENT_TIME, m_observer.root(),
                        static_cast<std::int16_t>(x), static_cast<std::int16_t>(y), 0);
    m_observer.x().roundTrip();
}

void Mouse::moveTo(int x, int y) {
    constexpr std::uint8_t kAbsolute = 0;
    fake(XCB_MOTION_NOTIFY, kAbsolute, x, y);
}

void Mouse::press(std::uint8_t button) {
    fake(XCB_BUTTON_PRESS, button);
}

void Mouse::release(std::uint8_t button) {
    fake(XCB_BUTTON_RELEASE, button);
}

void Mouse::click(std::uint8_t button) {
    press(button);
    release(button);
}

void Mouse::clickCentre(const Frame& frame, std::uint8_t button) {
    // Moves from the edge to the centre, because menus highlight a row only after motion inside it.
    moveTo(frame.x + 2, frame.y + frame.height / 2);
    moveTo(frame.x + frame.width / 2, frame.y + frame.height / 2);
    click(button);
}

void Mouse::hold(std::uint16_t mask) {
    for (const auto& [modifier, key] : kModifierKeys) {
        const bool isWanted = (mask & modifier) != 0;
        if (isWanted != ((m_heldModifiers & modifier) != 0))
            fake(isWanted ? XCB_KEY_PRESS : XCB_KEY_RELEASE, key);
    }
    m_heldModifiers = mask;
}

std::uint16_t Mouse::state() {
    xcb_connection_t* x = m_observer.x().get();
    const auto pointer = own(xcb_query_pointer_reply(x, xcb_query_pointer(x, m_observer.root()), nullptr));
    return pointer ? pointer->mask : std::uint16_t{0};
}

} // namespace tessarel::x11test
