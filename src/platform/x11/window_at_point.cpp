#include "platform/x11/window_at_point.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tessarel::x11 {

namespace {

/// Frames are nested in frames only a few times over.
constexpr int kDeepestNesting = 8;

/// The child of the root window that shows the pixel.
xcb_window_t childAt(Connection& connection, const Point& rootPoint) {
    const auto answer = connection.reply<xcb_translate_coordinates_reply>(xcb_translate_coordinates(
        connection.xcb(), connection.root(), connection.root(), static_cast<std::int16_t>(rootPoint.x),
        static_cast<std::int16_t>(rootPoint.y)));
    return answer ? answer->child : xcb_window_t{XCB_WINDOW_NONE};
}

/// A managed window, and how far up from it we have come.
struct Climb {
    xcb_window_t window;
    xcb_window_t ancestor;
};

/// Takes every climb one step up, all in one round trip. Those that are at the top already have come to
/// their end, as have windows that are gone.
std::vector<Climb> higher(Connection& connection, const std::vector<Climb>& climbs) {
    std::vector<xcb_query_tree_cookie_t> cookies;
    for (const Climb& one : climbs)
        cookies.push_back(xcb_query_tree(connection.xcb(), one.ancestor));
    std::vector<Climb> next;
    for (std::size_t i = 0; i < climbs.size(); ++i) {
        const auto tree = connection.reply<xcb_query_tree_reply>(cookies[i]);
        if (tree && tree->parent != connection.root())
            next.push_back({climbs[i].window, tree->parent});
    }
    return next;
}

/// The windows whose frame `child` is, the front-most first.
std::vector<xcb_window_t> windowsIn(Connection& connection, ClientWindows& windows, xcb_window_t child) {
    std::vector<Climb> climbs;
    for (const xcb_window_t window : windows.frontToBack())
        climbs.push_back({window, window});
    std::vector<xcb_window_t> found;
    for (int step = 0; step < kDeepestNesting && found.empty() && !climbs.empty(); ++step) {
        for (const Climb& one : climbs) {
            if (one.ancestor == child)
                found.push_back(one.window);
        }
        if (found.empty())
            climbs = higher(connection, climbs);
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
