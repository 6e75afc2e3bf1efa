// SPDX-License-Identifier: MIT

#pragma once

#include "platform/x11/server/connection.h"
#include "platform/x11/windows/climb.h"

#include <xcb/xcb.h>

#include <vector>

namespace tessarel::x11 {

/// The pending requests for the true stacking order of windows. `collect` must be called once.
///
/// Not every window manager updates `_NET_CLIENT_LIST_STACKING` when it raises a window. The server's own
/// order of the frames is always up to date.
class StackingRequest {
public:
    /// Sends the requests. `windows` are client windows. `connection` must outlive this object.
    StackingRequest(Connection& connection, const std::vector<xcb_window_t>& windows);

    /// Waits for the replies and returns the windows, front to back. Takes one round trip, and one more for
    /// each further level of nested frames. Windows in the same frame keep the order in which they were
    /// given, as do windows that no longer exist, which come last.
    [[nodiscard]] std::vector<xcb_window_t> collect();

private:
    Connection& m_connection;
    std::vector<xcb_window_t> m_windows;
    xcb_query_tree_cookie_t m_root;
    ClimbStep m_firstStep;
};

} // namespace tessarel::x11
