#pragma once

#include "platform/x11/server/connection.h"

#include <xcb/xcb.h>

#include <vector>

namespace tessarel::x11 {

/// Frames are nested in frames only a few times over.
inline constexpr int kDeepestNesting = 8;

/// A window on the way up through the frames that it is nested in.
struct Climb {
    xcb_window_t window;
    xcb_window_t ancestor; ///< how far it has come
};

/// All of `windows` at their start.
[[nodiscard]] std::vector<Climb> startClimbs(const std::vector<xcb_window_t>& windows);

/// One step up for many windows in one round trip: sent and not answered yet. Collected once.
class ClimbStep {
public:
    ClimbStep(Connection& connection, std::vector<Climb> climbs);

    /// Those that are at the top already have come to their end, as have windows that are gone.
    [[nodiscard]] std::vector<Climb> collect();

private:
    Connection& m_connection;
    std::vector<Climb> m_climbs;
    std::vector<xcb_query_tree_cookie_t> m_cookies;
};

} // namespace tessarel::x11
