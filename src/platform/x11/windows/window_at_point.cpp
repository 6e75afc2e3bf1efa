#include "platform/x11/windows/window_at_point.h"

#include "platform/x11/windows/climb.h"

#include <cstdint>
#include <utility>
#include <vector>

namespace tessarel::x11 {

namespace {

/// The child of the root window that shows the pixel.
xcb_window_t childAt(Connection& connection, const Point& rootPoint) {
    const auto answer = connection.reply<xcb_translate_coordinates_reply>(xcb_translate_coordinates(
        connection.xcb(), connection.root(), connection.root(), static_cast<std::int16_t>(rootPoint.x),
        static_cast<std::int16_t>(rootPoint.y)));
    return answer ? answer->child : xcb_window_t{XCB_WINDOW_NONE};
}

/// The windows whose frame `child` is, the front-most first.
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
    for (const xcb_window_t window : windowsIn(connection, windows, child)) {
        const auto frame = windows.frame(window);
        if (frame && frame->outer().contains(rootPoint))
            return window;
    }
    return std::nullopt;
}

} // namespace tessarel::x11
