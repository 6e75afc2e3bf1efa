// SPDX-License-Identifier: MIT

#pragma once

#include <xcb/xcb.h>

#include <memory>
#include <string>

namespace tessarel::x11 {

struct Disconnect {
    void operator()(xcb_connection_t* xcb) const { xcb_disconnect(xcb); }
};

using XcbConnection = std::unique_ptr<xcb_connection_t, Disconnect>;

/// The result of `openDisplay`.
struct OpenedDisplay {
    XcbConnection xcb = {};               ///< null on failure
    const xcb_screen_t* screen = nullptr; ///< the one that the name asks for; null on failure
    int screenNumber = 0;
    std::string failure = {}; ///< one sentence for the user; empty on success
};

/// Connects to `displayName`, or to $DISPLAY when it is null. Fails when the server refuses the connection or
/// does not have the screen that the name asks for.
[[nodiscard]] OpenedDisplay openDisplay(const char* displayName);

} // namespace tessarel::x11
