#pragma once

#include "platform/x11/server/connection.h"
#include "platform/x11/server/window_manager_check.h"
#include "platform/x11/windows/barrier.h"
#include "platform/x11/windows/client_windows.h"
#include "ports/rect.h"

#include <optional>

namespace tessarel::x11 {

/// What is to change of a window's visible frame; in pixels of the root window, y down.
struct FrameWish {
    std::optional<Point> origin;
    std::optional<Size> size;
};

/// Puts windows where they are wanted, as far as the window manager lets us.
class Placement {
public:
    Placement(Connection& connection, ClientWindows& windows);

    /// Asks for the frame in one step and comes back when the manager has settled it, or has not answered in
    /// time. Maximised and shaded windows are brought back to normal first; where a manager holds on to a
    /// window that it has tiled, it is made to let go. Does nothing when the window has gone. False when the
    /// manager has not answered: then the window may still be on its way.
    bool place(xcb_window_t window, FrameWish wish);

private:
    /// Sends the wish and waits; false when nobody has answered.
    bool ask(xcb_window_t window, const FrameWish& wish, const Extents& extents);
    void askManager(xcb_window_t window, const FrameWish& wish, const Extents& extents);
    void askServer(xcb_window_t window, const FrameWish& wish, const Extents& extents);
    void normalize(xcb_window_t window, const WindowStates& states);
    /// Asks again where the manager has moved the window elsewhere, and makes it let go where it holds on to
    /// it; false when nobody has answered.
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
