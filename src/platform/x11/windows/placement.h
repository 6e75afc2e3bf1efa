#pragma once

#include "platform/x11/server/connection.h"
#include "platform/x11/server/window_manager_check.h"
#include "platform/x11/windows/barrier.h"
#include "platform/x11/windows/client_windows.h"
#include "ports/rect.h"

#include <optional>

namespace tessarel::x11 {

/// The requested position and size of a window's visible frame, in pixels of the root window, y down. An
/// empty member leaves that part as it is.
struct FrameWish {
    std::optional<Point> origin;
    std::optional<Size> size;
};

/// Moves and resizes other clients' windows through the window manager.
class Placement {
public:
    /// Both references must outlive this object.
    Placement(Connection& connection, ClientWindows& windows);

    /// Requests the frame with one message and waits until the window manager has processed it, or times out.
    ///
    /// Maximised and shaded windows are restored first, and a window that the window manager has tiled itself
    /// is released from its tile. The window manager may still choose another size, for instance because of
    /// the client's size hints, so read the frame back afterwards.
    ///
    /// Returns false on a timeout; the window may then still be moving. Returns true without doing anything
    /// when the window does not exist.
    bool place(xcb_window_t window, FrameWish wish);

private:
    /// Sends the wish and waits; returns false on a timeout.
    bool ask(xcb_window_t window, const FrameWish& wish, const Extents& extents);
    void askManager(xcb_window_t window, const FrameWish& wish, const Extents& extents);
    void askServer(xcb_window_t window, const FrameWish& wish, const Extents& extents);
    void normalize(xcb_window_t window, const WindowStates& states);
    /// Handles a refusal: repeats the request if the window manager has moved the window elsewhere, and
    /// releases the window from its tile if that does not help. Returns false on a timeout.
    bool insist(xcb_window_t window, const FrameWish& wish, const Rect& before, const WindowFrame& after);
    [[nodiscard]] bool isHeldFrom(xcb_window_t window, const WindowFrame& frame, const FrameWish& wish);
    void releaseFromTile(xcb_window_t window);
    [[nodiscard]] std::optional<WindowFrame> readBack(xcb_window_t window);

    Connection& m_connection;
    ClientWindows& m_windows;
    Barrier m_barrier;
    WindowManagerCheck m_manager;
};

} // namespace tessarel::x11
