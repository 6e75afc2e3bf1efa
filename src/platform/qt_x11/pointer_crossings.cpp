// SPDX-License-Identifier: MIT

#include "platform/qt_x11/pointer_crossings.h"

#include "platform/qt_x11/qt_connection.h"

#include <xcb/xcb.h>

#include <cstdint>

namespace tessarel::qt {

namespace {

/// Qt selects these events on the root window but does not use them there.
constexpr std::uint32_t kCrossings = XCB_EVENT_MASK_ENTER_WINDOW | XCB_EVENT_MASK_LEAVE_WINDOW;

/// Removes the crossing events from this connection's event mask of `window`.
void ignoreCrossingsOf(xcb_connection_t* xcb, xcb_window_t window) {
    const auto cookie = xcb_get_window_attributes(xcb, window);
    const Reply<xcb_get_window_attributes_reply_t> attributes(
        xcb_get_window_attributes_reply(xcb, cookie, nullptr));
    if (!attributes)
        return;
    const std::uint32_t others = attributes->your_event_mask & ~kCrossings;
    xcb_change_window_attributes(xcb, window, XCB_CW_EVENT_MASK, &others);
}

} // namespace

void ignorePointerCrossings() {
    xcb_connection_t* const xcb = qtConnection();
    if (xcb == nullptr)
        return;
    for (auto screens = xcb_setup_roots_iterator(xcb_get_setup(xcb)); screens.rem > 0;
         xcb_screen_next(&screens))
        ignoreCrossingsOf(xcb, screens.data->root);
    xcb_flush(xcb);
}

} // namespace tessarel::qt
