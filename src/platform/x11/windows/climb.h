// SPDX-License-Identifier: MIT

#pragma once

#include "platform/x11/server/connection.h"

#include <xcb/xcb.h>

#include <vector>

namespace tessarel::x11 {

/// Upper bound for the number of frames around a client window. Real window managers nest only a few.
inline constexpr int kDeepestNesting = 8;

/// The progress of a search for the top-level frame of a client window, upwards through its ancestors.
struct Climb {
    xcb_window_t window;   ///< the client window
    xcb_window_t ancestor; ///< the ancestor that was reached so far
};

/// Returns a climb for each of `windows`, starting at the window itself.
[[nodiscard]] std::vector<Climb> startClimbs(const std::vector<xcb_window_t>& windows);

/// The pending requests for the parents of many windows: one step up in one round trip. `collect` must be
/// called once.
class ClimbStep {
public:
    /// Sends a request for each climb. `connection` must outlive this object.
    ClimbStep(Connection& connection, std::vector<Climb> climbs);

    /// Waits for the replies and returns the climbs, each one level higher. Climbs that were at the top
    /// already are left out, and so are windows that no longer exist.
    [[nodiscard]] std::vector<Climb> collect();

private:
    Connection& m_connection;
    std::vector<Climb> m_climbs;
    std::vector<xcb_query_tree_cookie_t> m_cookies;
};

} // namespace tessarel::x11
