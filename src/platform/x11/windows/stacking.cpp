// SPDX-License-Identifier: MIT

#include "platform/x11/windows/stacking.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

namespace tessarel::x11 {

namespace {

/// Positions in the stacking order, from 1 for the bottom window. A missing entry reads as 0, below all
/// others.
using Heights = std::unordered_map<xcb_window_t, int>;

/// Returns the heights of the root window's children, which QueryTree returns bottom to top.
Heights heightsOf(const xcb_query_tree_reply_t& root) {
    Heights heights;
    const xcb_window_t* const children = xcb_query_tree_children(&root);
    for (int i = 0; i < xcb_query_tree_children_length(&root); ++i)
        heights[children[i]] = i + 1;
    return heights;
}

/// Removes the climbs that have reached a child of the root window, and stores its height for their client
/// window in `reached`.
void takeThoseAtTop(std::vector<Climb>& climbs, const Heights& heights, Heights& reached) {
    std::erase_if(climbs, [&](const Climb& one) {
        const auto height = heights.find(one.ancestor);
        if (height == heights.end())
            return false;
        reached[one.window] = height->second;
        return true;
    });
}

} // namespace

StackingRequest::StackingRequest(Connection& connection, const std::vector<xcb_window_t>& windows)
    : m_connection(connection), m_windows(windows),
      m_root(xcb_query_tree(connection.xcb(), connection.root())),
      m_firstStep(connection, startClimbs(windows)) {}

std::vector<xcb_window_t> StackingRequest::collect() {
    const auto root = m_connection.reply<xcb_query_tree_reply>(m_root);
    const Heights heights = root ? heightsOf(*root) : Heights{};
    Heights reached;
    // Windows without a frame are children of the root window themselves.
    std::vector<Climb> unframed = startClimbs(m_windows);
    takeThoseAtTop(unframed, heights, reached);
    std::vector<Climb> climbs = m_firstStep.collect();
    for (int step = 1; step < kDeepestNesting && !climbs.empty(); ++step) {
        takeThoseAtTop(climbs, heights, reached);
        if (!climbs.empty())
            climbs = ClimbStep(m_connection, std::move(climbs)).collect();
    }
    std::ranges::stable_sort(m_windows, std::ranges::greater{},
                             [&](xcb_window_t window) { return reached[window]; });
    return std::move(m_windows);
}

} // namespace tessarel::x11
