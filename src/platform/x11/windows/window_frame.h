// SPDX-License-Identifier: MIT

#pragma once

#include "platform/x11/server/connection.h"
#include "ports/desktop/rect.h"

#include <cstdint>
#include <optional>
#include <span>

namespace tessarel::x11 {

/// The distance in pixels from each edge of the client window to the visible outer frame.
///
/// Positive for decorations of the window manager (`_NET_FRAME_EXTENTS`). Negative for client-decorated
/// windows, whose X window includes an invisible border and a shadow (`_GTK_FRAME_EXTENTS`).
struct Extents {
    int left = 0;
    int right = 0;
    int top = 0;
    int bottom = 0;

    bool operator==(const Extents&) const = default;
};

/// The states from `_NET_WM_STATE` that decide whether and how a window can be placed.
struct WindowStates {
    bool maximizedHorizontally = false;
    bool maximizedVertically = false;
    bool shaded = false;
    bool hidden = false; ///< metacity, mutter and marco also set it for shaded windows
    bool fullScreen = false;

    bool operator==(const WindowStates&) const = default;
};

/// The position and state of a client window. Rectangles are in pixels of the root window, y down.
struct WindowFrame {
    Rect client; ///< the X window itself
    Extents extents;
    WindowStates states;
    bool isMinimized = false; ///< not on the screen of its desktop, not even as a title bar

    /// Returns the visible frame: what the user sees as the window, including decorations, without shadows.
    ///
    /// Computed from the extents instead of the frame's X window, because that includes invisible borders in
    /// mutter and marco.
    [[nodiscard]] Rect outer() const;
};

/// Decodes left, right, top and bottom extents. Returns `std::nullopt` unless there are exactly four
/// plausible values.
[[nodiscard]] std::optional<Extents> extentsFrom(std::span<const std::uint32_t> values);

/// Decodes `_NET_WM_STATE`; states of no interest here are ignored.
[[nodiscard]] WindowStates statesFrom(const Atoms& known, std::span<const std::uint32_t> atoms);

/// Returns the extents to use: the negated shadows of a client-decorated window if they are smaller than the
/// window, else the window manager's decoration, else none. Never the sum, because a client-decorated window
/// has no decoration by the window manager.
[[nodiscard]] Extents effectiveExtents(std::optional<Extents> decoration, std::optional<Extents> shadows,
                                       const Size& client);

/// Returns the rectangle of the child of the root window that contains `window` or is it, its border
/// included, in pixels of the root window. Returns `std::nullopt` when it does not exist. Takes a round trip
/// for each level of frames, and one more.
[[nodiscard]] std::optional<Rect> frameWindowOf(Connection& connection, xcb_window_t window);

/// Where the extents of a window are read.
enum class ExtentsSource {
    Properties,  ///< from the window's properties; without them it has no extents
    FrameWindow, ///< without properties, from the frame that the window manager has put around it
};

/// The pending requests for a `WindowFrame`. `collect` must be called once.
class FrameRequest {
public:
    /// Sends the requests. `connection` must outlive this object.
    FrameRequest(Connection& connection, xcb_window_t window, ExtentsSource source);

    /// Waits for the replies. Returns `std::nullopt` when the window does not exist. Takes a further round
    /// trip for each level of frames, and one more, if the extents have to be read from the frame. Takes as
    /// many if the window is both shaded and hidden.
    [[nodiscard]] std::optional<WindowFrame> collect();

private:
    Connection* m_connection;
    xcb_window_t m_window;
    ExtentsSource m_source;
    xcb_get_geometry_cookie_t m_geometry;
    xcb_translate_coordinates_cookie_t m_origin;
    xcb_get_property_cookie_t m_decoration;
    xcb_get_property_cookie_t m_shadows;
    xcb_get_property_cookie_t m_states;
};

} // namespace tessarel::x11
