// SPDX-License-Identifier: MIT

#include "platform/x11/server/server_time.h"

#include <chrono>
#include <cstdint>

namespace tessarel::x11 {

/// An empty append to a property of a window of our own provides the time: its PropertyNotify carries it.
xcb_timestamp_t serverTime(Connection& connection) {
    xcb_connection_t* const xcb = connection.xcb();
    const xcb_window_t window = xcb_generate_id(xcb);
    const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(xcb, XCB_COPY_FROM_PARENT, window, connection.root(), -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
    xcb_change_property(xcb, XCB_PROP_MODE_APPEND, window, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8, 0, nullptr);
    xcb_timestamp_t time = XCB_CURRENT_TIME;
    const auto takeTime = [&](const Connection::Event& event) {
        const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        if (event.response_type != XCB_PROPERTY_NOTIFY || change.window != window)
            return false;
        time = change.time;
        return true;
    };
    connection.waitFor(takeTime, std::chrono::seconds(1));
    xcb_destroy_window(xcb, window);
    return time;
}

} // namespace tessarel::x11
