#pragma once

#include "platform/x11/server/connection.h"
#include "platform/x11/windows/climb.h"

#include <xcb/xcb.h>

#include <vector>

namespace tessarel::x11 {

/// The question in which order windows really lie on each other, sent and not answered yet. Collected once.
///
/// The lists that window managers publish are not all kept up when a window is raised; the server's own order
/// of their frames is.
class StackingRequest {
public:
    StackingRequest(Connection& connection, const std::vector<xcb_window_t>& windows);

    /// The windows, the front-most first. Those in the same frame, and those that have gone, which come last,
    /// keep the order that they were given in.
    [[nodiscard]] std::vector<xcb_window_t> collect();

private:
    Connection& m_connection;
    std::vector<xcb_window_t> m_windows;
    xcb_query_tree_cookie_t m_root;
    ClimbStep m_firstStep;
};

} // namespace tessarel::x11
