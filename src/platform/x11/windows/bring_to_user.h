// SPDX-License-Identifier: MIT

#pragma once

#include "platform/x11/server/connection.h"

namespace tessarel::x11 {

/// Brings a mapped or minimised window to the current virtual desktop, in front of all others, and gives it
/// the focus.
///
/// Use it when the user has asked for the window. The window manager may not know that, because the request
/// came from another process, and would keep the window from taking the focus. So the requests are those of a
/// pager, which the user operates, and have the present time of the server. Takes up to four round trips; the
/// server has processed the requests when it returns.
void bringToUser(Connection& connection, xcb_window_t window);

/// Brings a mapped window to the current virtual desktop and raises it, without asking for the focus, which
/// some window managers give to every window that asks to be raised.
///
/// Use it for a window that another one, such as its modal dialog, is to follow. Takes up to three round
/// trips; the server has processed the requests when it returns.
void bringAlong(Connection& connection, xcb_window_t window);

} // namespace tessarel::x11
