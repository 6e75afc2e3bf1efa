// SPDX-License-Identifier: MIT

#include "platform/x11/windows/bring_to_user.h"

#include "platform/x11/server/property.h"
#include "platform/x11/server/server_time.h"

#include <cstdint>

namespace tessarel::x11 {

namespace {

constexpr std::uint32_t kFromPager = 2; // source indication of EWMH

/// Sends a request about `window` to the window manager.
xcb_void_cookie_t sendToManager(Connection& connection, xcb_window_t window, Atom type, std::uint32_t first,
                                std::uint32_t second) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = connection.atom(type);
    message.data.data32[0] = first;
    message.data.data32[1] = second;
    return xcb_send_event_checked(connection.xcb(), 0, connection.root(),
                                  XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                                  reinterpret_cast<const char*>(&message));
}

/// Moves the window to the current desktop, unless it is there or on all desktops.
void moveToCurrentDesktop(Connection& connection, xcb_window_t window) {
    const auto currentCookie = requestNumber(connection, connection.root(), Atom::NetCurrentDesktop);
    const auto ownCookie = requestNumber(connection, window, Atom::NetWmDesktop);
    const auto current = value(propertyReply(connection, currentCookie));
    const auto own = value(propertyReply(connection, ownCookie));
    if (current && own && own != current && own != kAllDesktops)
        (void)connection.succeeds(
            sendToManager(connection, window, Atom::NetWmDesktop, *current, kFromPager));
}

xcb_void_cookie_t raise(Connection& connection, xcb_window_t window) {
    const std::uint32_t above = XCB_STACK_MODE_ABOVE;
    return xcb_configure_window_checked(connection.xcb(), window, XCB_CONFIG_WINDOW_STACK_MODE, &above);
}

} // namespace

// Both wait for the last request, so that one on another connection, such as Qt's, comes later.

void bringToUser(Connection& connection, xcb_window_t window) {
    const xcb_timestamp_t now = serverTime(connection);
    moveToCurrentDesktop(connection, window);
    (void)raise(connection, window);
    (void)connection.succeeds(sendToManager(connection, window, Atom::NetActiveWindow, kFromPager, now));
}

void bringAlong(Connection& connection, xcb_window_t window) {
    moveToCurrentDesktop(connection, window);
    (void)connection.succeeds(raise(connection, window));
}

} // namespace tessarel::x11
