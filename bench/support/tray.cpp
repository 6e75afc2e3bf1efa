// SPDX-License-Identifier: MIT

#include "support/tray.h"

#include "support/clock.h"

#include <stdexcept>
#include <string_view>
#include <thread>
#include <vector>

namespace tessarel::bench {

namespace {

using namespace std::chrono_literals;

constexpr auto kPatience = 10s;
constexpr int kSmallestIcon = 16;
constexpr int kLargestIcon = 64;

} // namespace

Tray::Tray(const std::filesystem::path& config)
    : m_panel(std::vector<std::string>{"sh", "-c", "exec tint2 -c \"$0\" 2>/dev/null", config.string()}) {}

Place Tray::awaitIcon(const std::string& program) const {
    const auto end = Clock::now() + kPatience;
    while (Clock::now() < end) {
        if (const auto icon = findIcon(m_connection.root(), program))
            return *icon;
        std::this_thread::sleep_for(20ms);
    }
    throw std::runtime_error("no icon of " + program + " came to the tray");
}

std::optional<Place> Tray::findIcon(xcb_window_t below, const std::string& program) const {
    xcb_connection_t* const x = m_connection.get();
    const Received<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(x, xcb_query_tree(x, below), nullptr));
    if (!tree)
        return std::nullopt;
    const xcb_window_t* const children = xcb_query_tree_children(tree.get());
    for (int i = 0; i < xcb_query_tree_children_length(tree.get()); ++i) {
        if (const auto icon = centreOfIcon(children[i], program))
            return icon;
        if (const auto icon = findIcon(children[i], program))
            return icon;
    }
    return std::nullopt;
}

std::optional<Place> Tray::centreOfIcon(xcb_window_t window, const std::string& program) const {
    xcb_connection_t* const x = m_connection.get();
    const auto classCookie = xcb_get_property(x, 0, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 0, 64);
    const auto sizeCookie = xcb_get_geometry(x, window);
    const auto originCookie = xcb_translate_coordinates(x, window, m_connection.root(), 0, 0);
    const auto stateCookie = xcb_get_window_attributes(x, window);
    const Received<xcb_get_property_reply_t> name(xcb_get_property_reply(x, classCookie, nullptr));
    const Received<xcb_get_geometry_reply_t> size(xcb_get_geometry_reply(x, sizeCookie, nullptr));
    const Received<xcb_translate_coordinates_reply_t> origin(
        xcb_translate_coordinates_reply(x, originCookie, nullptr));
    const Received<xcb_get_window_attributes_reply_t> state(
        xcb_get_window_attributes_reply(x, stateCookie, nullptr));
    if (!name || !size || !origin || !state || state->map_state != XCB_MAP_STATE_VIEWABLE)
        return std::nullopt;
    const std::string_view names(static_cast<const char*>(xcb_get_property_value(name.get())),
                                 static_cast<std::size_t>(xcb_get_property_value_length(name.get())));
    if (!names.starts_with(program) || size->width < kSmallestIcon || size->width > kLargestIcon)
        return std::nullopt;
    return Place{origin->dst_x + size->width / 2, origin->dst_y + size->height / 2};
}

} // namespace tessarel::bench
