// SPDX-License-Identifier: MIT

#include "support/clicker.h"

#include <xcb/xtest.h>

#include <cstring>
#include <stdexcept>
#include <thread>

namespace tessarel::bench {

namespace {

using namespace std::chrono_literals;

constexpr auto kPatience = 5s;
constexpr auto kBetweenKeys = 200ms;
constexpr std::uint8_t kEscape = 9;
constexpr int kPanelHeight = 30;
constexpr int kIntoMenu = 10;               // right of the pointer and below the panel
constexpr std::uint32_t kBare = 0x00FF00FF; // a colour that no menu has

} // namespace

Clicker::Clicker(const Place& icon) : m_icon(icon), m_inMenu{icon.x + kIntoMenu, kPanelHeight + kIntoMenu} {
    xcb_change_window_attributes(m_connection.get(), m_connection.root(), XCB_CW_BACK_PIXEL, &kBare);
    xcb_clear_area(m_connection.get(), 0, m_connection.root(), 0, 0, 0, 0);
    point();
}

void Clicker::point() {
    fake(XCB_MOTION_NOTIFY, 0, m_icon.x, m_icon.y);
}

void Clicker::fake(std::uint8_t type, std::uint8_t detail, int x, int y) {
    xcb_test_fake_input(m_connection.get(), type, detail, XCB_CURRENT_TIME, m_connection.root(),
                        static_cast<std::int16_t>(x), static_cast<std::int16_t>(y), 0);
    m_connection.flush();
}

/// Returns true while the place of the menu still shows the root window's colour.
bool Clicker::isBare() const {
    const Received<xcb_get_image_reply_t> pixel(
        xcb_get_image_reply(m_connection.get(),
                            xcb_get_image(m_connection.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, m_connection.root(),
                                          static_cast<std::int16_t>(m_inMenu.x),
                                          static_cast<std::int16_t>(m_inMenu.y), 1, 1, 0x00FFFFFF),
                            nullptr));
    if (!pixel)
        throw std::runtime_error("the X server has gone");
    std::uint32_t value = 0;
    std::memcpy(&value, xcb_get_image_data(pixel.get()), sizeof value);
    return (value & 0x00FFFFFF) == kBare;
}

void Clicker::await(const std::function<bool()>& holds) const {
    const auto end = Clock::now() + kPatience;
    while (!holds()) {
        if (Clock::now() > end)
            throw std::runtime_error("no menu came, or it did not go");
        std::this_thread::sleep_for(200us);
    }
}

Milliseconds Clicker::click(std::uint8_t button) {
    const auto begin = Clock::now();
    fake(XCB_BUTTON_PRESS, button);
    fake(XCB_BUTTON_RELEASE, button);
    await([this] { return !isBare(); });
    const Milliseconds taken = Clock::now() - begin;
    closeMenu();
    return taken;
}

/// Presses Escape, and again if it came before the menu had grabbed the keyboard.
void Clicker::closeMenu() {
    auto next = Clock::now();
    await([&] {
        if (Clock::now() >= next) {
            fake(XCB_KEY_PRESS, kEscape);
            fake(XCB_KEY_RELEASE, kEscape);
            next = Clock::now() + kBetweenKeys;
        }
        return isBare();
    });
}

} // namespace tessarel::bench
