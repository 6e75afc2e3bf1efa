#pragma once

#include "platform/x11/server/connection.h"
#include "ports/rect.h"

#include <cstdint>
#include <optional>
#include <span>

namespace tessarel::x11 {

/// By how many pixels the visible outer frame reaches beyond a client's window, on each side. Negative where
/// a client draws its own frame and a shadow around it.
struct Extents {
    int left = 0;
    int right = 0;
    int top = 0;
    int bottom = 0;

    bool operator==(const Extents&) const = default;
};

/// States that decide whether and how a window can be placed.
struct WindowStates {
    bool maximizedHorizontally = false;
    bool maximizedVertically = false;
    bool shaded = false;
    bool hidden = false;
    bool fullScreen = false;

    bool operator==(const WindowStates&) const = default;
};

/// Where a client's window is; rectangles in pixels of the root window, y down.
struct WindowFrame {
    Rect client;
    Extents extents;
    WindowStates states;

    /// The visible frame.
    [[nodiscard]] Rect outer() const;
};

/// Extents as a property gives them: left, right, top, bottom. Empty when they are not four plausible
/// numbers.
[[nodiscard]] std::optional<Extents> extentsFrom(std::span<const std::uint32_t> values);

/// What counts of the two kinds of extents: shadows where the client draws them and they leave something of
/// the window, else the manager's decoration. Never both.
[[nodiscard]] Extents effectiveExtents(std::optional<Extents> decoration, std::optional<Extents> shadows,
                                       const Size& client);

/// The questions for a `WindowFrame`, sent and not answered yet. Every request is collected once.
class FrameRequest {
public:
    FrameRequest(Connection& connection, xcb_window_t window);

    /// Empty when the window has gone.
    [[nodiscard]] std::optional<WindowFrame> collect();

private:
    Connection* m_connection;
    xcb_get_geometry_cookie_t m_geometry;
    xcb_translate_coordinates_cookie_t m_origin;
    xcb_get_property_cookie_t m_decoration;
    xcb_get_property_cookie_t m_shadows;
    xcb_get_property_cookie_t m_states;
};

} // namespace tessarel::x11
