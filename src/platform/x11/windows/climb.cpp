// SPDX-License-Identifier: MIT

#include "platform/x11/windows/climb.h"

#include <cstddef>
#include <utility>

namespace tessarel::x11 {

std::vector<Climb> startClimbs(const std::vector<xcb_window_t>& windows) {
    std::vector<Climb> climbs;
    climbs.reserve(windows.size());
    for (const xcb_window_t window : windows)
        climbs.push_back({window, window});
    return climbs;
}

ClimbStep::ClimbStep(Connection& connection, std::vector<Climb> climbs)
    : m_connection(connection), m_climbs(std::move(climbs)) {
    m_cookies.reserve(m_climbs.size());
    for (const Climb& one : m_climbs)
        m_cookies.push_back(xcb_query_tree(connection.xcb(), one.ancestor));
}

std::vector<Climb> ClimbStep::collect() {
    std::vector<Climb> higher;
    for (std::size_t i = 0; i < m_climbs.size(); ++i) {
        const auto tree = m_connection.reply<xcb_query_tree_reply>(m_cookies[i]);
        // A window whose parent is the root window is at the top. It ends its climb, as does a window that is
        // gone.
        if (tree && tree->parent != m_connection.root())
            higher.push_back({m_climbs[i].window, tree->parent});
    }
    return higher;
}

} // namespace tessarel::x11
