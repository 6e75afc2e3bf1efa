// SPDX-License-Identifier: MIT

#include "platform/x11/windows/window_frame.h"

#include "platform/x11/server/property.h"
#include "platform/x11/windows/climb.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace tessarel::x11 {

namespace {

constexpr std::uint32_t kExtentsLength = 4;
/// In pixels. Rejects nonsense, including negative values, which read as very large unsigned ones.
constexpr std::uint32_t kLargestExtent = 4096;
constexpr std::uint32_t kMostStates = 256;

/// Returns the child of the root window that contains `window`, or `window` itself if it is one.
xcb_window_t topLevelOf(Connection& connection, xcb_window_t window) {
    std::vector<Climb> climbs = startClimbs({window});
    for (int step = 0; step < kDeepestNesting && !climbs.empty(); ++step) {
        window = climbs.front().ancestor;
        climbs = ClimbStep(connection, std::move(climbs)).collect();
    }
    return window;
}

/// Returns the distances from the edges of `client`, in pixels of the root window, to the outer edges of the
/// frame window around it, borders included. Returns `std::nullopt` when there is no window any more.
std::optional<Extents> extentsOfFrameWindow(Connection& connection, xcb_window_t window, const Rect& client) {
    const auto frame = frameWindowOf(connection, window);
    if (!frame)
        return std::nullopt;
    const int left = static_cast<int>(client.minX() - frame->minX());
    const int bottom = static_cast<int>(frame->maxY() - client.maxY());
    return Extents{.left = left,
                   .right = static_cast<int>(frame->maxX() - client.maxX()),
                   .top = static_cast<int>(client.minY() - frame->minY()),
                   .bottom = bottom < 0 ? left : bottom}; // a shaded window's frame ends above its client
}

/// Returns whether a window with these states is minimised. The states do not say so for a window that is
/// both shaded and hidden: while it is only shaded, its frame is mapped. mutter keeps the frame mapped in any
/// case.
bool isMinimizedIn(Connection& connection, xcb_window_t window, const WindowStates& states) {
    if (!states.hidden || !states.shaded)
        return states.hidden;
    const auto frame = connection.reply<xcb_get_window_attributes_reply>(
        xcb_get_window_attributes(connection.xcb(), topLevelOf(connection, window)));
    return !frame || frame->map_state == XCB_MAP_STATE_UNMAPPED;
}

} // namespace

Rect WindowFrame::outer() const {
    return {client.x - extents.left, client.y - extents.top, client.width + extents.left + extents.right,
            client.height + extents.top + extents.bottom};
}

std::optional<Rect> frameWindowOf(Connection& connection, xcb_window_t window) {
    const auto frame = connection.reply<xcb_get_geometry_reply>(
        xcb_get_geometry(connection.xcb(), topLevelOf(connection, window)));
    if (!frame)
        return std::nullopt;
    // The geometry of a child of the root window gives the outer corner and the size without the border.
    const int border = 2 * frame->border_width;
    return Rect{static_cast<double>(frame->x), static_cast<double>(frame->y),
                static_cast<double>(frame->width + border), static_cast<double>(frame->height + border)};
}

std::optional<Extents> extentsFrom(std::span<const std::uint32_t> values) {
    const bool isPlausible = values.size() == kExtentsLength &&
                             std::all_of(values.begin(), values.end(),
                                         [](std::uint32_t extent) { return extent <= kLargestExtent; });
    if (!isPlausible)
        return std::nullopt;
    return Extents{static_cast<int>(values[0]), static_cast<int>(values[1]), static_cast<int>(values[2]),
                   static_cast<int>(values[3])};
}

WindowStates statesFrom(const Atoms& known, std::span<const std::uint32_t> atoms) {
    const auto has = [&](Atom state) {
        return std::find(atoms.begin(), atoms.end(), known[state]) != atoms.end();
    };
    return {.maximizedHorizontally = has(Atom::NetWmStateMaximizedHorz),
            .maximizedVertically = has(Atom::NetWmStateMaximizedVert),
            .shaded = has(Atom::NetWmStateShaded),
            .hidden = has(Atom::NetWmStateHidden),
            .fullScreen = has(Atom::NetWmStateFullscreen)};
}

Extents effectiveExtents(std::optional<Extents> decoration, std::optional<Extents> shadows,
                         const Size& client) {
    // Shadows as large as the window are nonsense and would leave nothing to place.
    const bool hasShadows = shadows && *shadows != Extents{} &&
                            shadows->left + shadows->right < client.width &&
                            shadows->top + shadows->bottom < client.height;
    if (hasShadows)
        return {-shadows->left, -shadows->right, -shadows->top, -shadows->bottom};
    return decoration.value_or(Extents{});
}

FrameRequest::FrameRequest(Connection& connection, xcb_window_t window, ExtentsSource source)
    : m_connection(&connection), m_window(window), m_source(source),
      m_geometry(xcb_get_geometry(connection.xcb(), window)),
      // The geometry is relative to the frame, so the origin is translated to root coordinates.
      m_origin(xcb_translate_coordinates(connection.xcb(), window, connection.root(), 0, 0)),
      m_decoration(requestProperty(connection, window, connection.atom(Atom::NetFrameExtents),
                                   XCB_ATOM_CARDINAL, kExtentsLength)),
      m_shadows(requestProperty(connection, window, connection.atom(Atom::GtkFrameExtents), XCB_ATOM_CARDINAL,
                                kExtentsLength)),
      m_states(requestProperty(connection, window, connection.atom(Atom::NetWmState), XCB_ATOM_ATOM,
                               kMostStates)) {}

std::optional<WindowFrame> FrameRequest::collect() {
    const auto geometry = m_connection->reply<xcb_get_geometry_reply>(m_geometry);
    const auto origin = m_connection->reply<xcb_translate_coordinates_reply>(m_origin);
    const auto decoration = propertyReply(*m_connection, m_decoration);
    const auto shadows = propertyReply(*m_connection, m_shadows);
    const auto states = propertyReply(*m_connection, m_states);
    if (!geometry || !origin)
        return std::nullopt;
    const Rect client{static_cast<double>(origin->dst_x), static_cast<double>(origin->dst_y),
                      static_cast<double>(geometry->width), static_cast<double>(geometry->height)};
    auto decorationExtents = extentsFrom(values(decoration));
    const auto shadowExtents = extentsFrom(values(shadows));
    if (!decorationExtents && !shadowExtents && m_source == ExtentsSource::FrameWindow)
        decorationExtents = extentsOfFrameWindow(*m_connection, m_window, client);
    const WindowStates windowStates = statesFrom(m_connection->atoms(), values(states));
    return WindowFrame{client, effectiveExtents(decorationExtents, shadowExtents, client.size()),
                       windowStates, isMinimizedIn(*m_connection, m_window, windowStates)};
}

} // namespace tessarel::x11
