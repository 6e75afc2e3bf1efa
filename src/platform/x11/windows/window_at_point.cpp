// SPDX-License-Identifier: MIT

#include "platform/x11/windows/window_at_point.h"

#include "platform/x11/windows/climb.h"

#include <cstdint>
#include <utility>
#include <vector>

namespace tessarel::x11 {

namespace {

/// Returns the child of the root window at the point: a frame, an unmanaged window, or XCB_WINDOW_NONE.
/// TranslateCoordinates from the root window to itself reports it.
xcb_window_t childAt(Connection& connection, const Point& rootPoint) {
    const auto answer = connection.reply<xcb_translate_coordinates_reply>(xcb_translate_coordinates(
        connection.xcb(), connection.root(), connection.root(), static_cast<std::int16_t>(rootPoint.x),
        static_cast<std::int16_t>(rootPoint.y)));
    return answer ? answer->child : xcb_window_t{XCB_WINDOW_NONE};
}

/// Returns the managed windows whose frame is `child`, front to back.
///
/// Searches upwards from the managed windows: over a title bar there is no way down, because the frame's own
/// sub-windows hide the client. Takes a round trip per level of frames.
std::vector<xcb_window_t> windowsIn(Connection& connection, ClientWindows& windows, xcb_window_t child) {
    std::vector<Climb> climbs = startClimbs(windows.frontToBack());
    std::vector<xcb_window_t> found;
    for (int step = 0; step < kDeepestNesting && found.empty() && !climbs.empty(); ++step) {
        for (const Climb& one : climbs) {
            if (one.ancestor == child)
                found.push_back(one.window);
        }
        if (found.empty())
            climbs = ClimbStep(connection, std::move(climbs)).collect();
    }
    return found;
}

} // namespace

std::optional<xcb_window_t> windowAtPoint(Connection& connection, ClientWindows& windows,
                                          const Point& rootPoint) {
    const xcb_window_t child = childAt(connection, rootPoint);
    if (child == XCB_WINDOW_NONE)
        return std::nullopt;
    // An invisible border belongs to the frame's X window, but not to the visible outer frame.
    for (const xcb_window_t window : windowsIn(connection, windows, child)) {
        const auto frame = windows.frame(window);
        if (frame && frame->outer().contains(rootPoint))
            return window;
    }
    return std::nullopt;
}

} // namespace tessarel::x11
