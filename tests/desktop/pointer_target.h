// SPDX-License-Identifier: MIT

#pragma once

#include "support/x11/observer.h"
#include "support/x11/x_server.h"

#include <xcb/xcb.h>
#include <xcb/xtest.h>

#include <cstdint>

namespace tessarel::x11test {

/// A window of another client that counts clicks, keys and focus losses.
class PointerTarget {
public:
    PointerTarget(const XServer& server, Observer& observer, const Frame& frame)
        : m_x(server.display()), m_observer(observer), m_window(xcb_generate_id(m_x.get())) {
        const std::uint32_t values[] = {m_x.screen().white_pixel, XCB_EVENT_MASK_BUTTON_PRESS |
                                                                      XCB_EVENT_MASK_KEY_PRESS |
                                                                      XCB_EVENT_MASK_FOCUS_CHANGE};
        xcb_create_window(m_x.get(), XCB_COPY_FROM_PARENT, m_window, m_x.root(),
                          static_cast<std::int16_t>(frame.x), static_cast<std::int16_t>(frame.y),
                          static_cast<std::uint16_t>(frame.width), static_cast<std::uint16_t>(frame.height),
                          0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                          XCB_CW_BACK_PIXEL | XCB_CW_EVENT_MASK, values);
        xcb_map_window(m_x.get(), m_window);
        m_x.roundTrip();
    }

    [[nodiscard]] xcb_window_t window() const { return m_window; }

    /// Clicks at a point of the root window.
    void click(std::int16_t x, std::int16_t y) {
        fake(XCB_MOTION_NOTIFY, 0, x, y);
        fake(XCB_BUTTON_PRESS, 1, 0, 0);
        fake(XCB_BUTTON_RELEASE, 1, 0, 0);
        m_x.roundTrip();
    }

    void press(xcb_keycode_t key) {
        fake(XCB_KEY_PRESS, key, 0, 0);
        fake(XCB_KEY_RELEASE, key, 0, 0);
        m_x.roundTrip();
    }

    [[nodiscard]] int clicks() { return take().m_clicks; }
    [[nodiscard]] int keys() { return take().m_keys; }
    [[nodiscard]] int focusLosses() { return take().m_focusLosses; }

private:
    void fake(std::uint8_t type, std::uint8_t detail, std::int16_t x, std::int16_t y) {
        xcb_test_fake_input(m_x.get(), type, detail, XCB_CURRENT_TIME, m_observer.root(), x, y, 0);
    }

    PointerTarget& take() {
        m_x.roundTrip();
        while (const auto event = own(xcb_poll_for_event(m_x.get()))) {
            const int type = event->response_type & 0x7f;
            m_clicks += type == XCB_BUTTON_PRESS ? 1 : 0;
            m_keys += type == XCB_KEY_PRESS ? 1 : 0;
            m_focusLosses += type == XCB_FOCUS_OUT ? 1 : 0;
        }
        return *this;
    }

    XConnection m_x;
    Observer& m_observer;
    xcb_window_t m_window;
    int m_clicks = 0;
    int m_keys = 0;
    int m_focusLosses = 0;
};

} // namespace tessarel::x11test
