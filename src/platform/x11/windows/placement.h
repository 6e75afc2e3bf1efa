// SPDX-License-Identifier: MIT

#pragma once

#include "platform/x11/server/connection.h"
#include "platform/x11/windows/barrier.h"
#include "platform/x11/windows/client_windows.h"
#include "ports/desktop/rect.h"

#include <functional>
#include <optional>

namespace tessarel::x11 {

/// The requested position and size of a window's visible frame, in pixels of the root window, y down. An
/// empty member leaves that part as it is.
struct FrameWish {
    std::optional<Point> origin;
    std::optional<Size> size;
};

/// What has become of a placement.
enum class PlacementOutcome {
    Settled, ///< the window manager has processed the request
    Late,    ///< it has not done so in time, and may still
    Refused, ///< it has left the window where it was, as tiling window managers do
};

/// Moves and resizes other clients' windows through the window manager.
///
/// Window managers move windows on `_NET_MOVERESIZE_WINDOW`, on a ConfigureWindow request, or both. The way
/// that is tried first follows from the announced hints; the one that has moved a window is kept until
/// another window manager takes over.
class Placement {
public:
    /// Both references must outlive this object. Calls `beforeRead`, if any, with the window each time just
    /// before reading its frame back.
    Placement(Connection& connection, ClientWindows& windows,
              std::function<void(xcb_window_t window)> beforeRead = nullptr);

    /// Requests the frame with one message and waits until the window manager has processed it, or times out.
    ///
    /// Maximised and shaded windows are restored first, and a window that the window manager has tiled itself
    /// is released from its tile. The window manager may still choose another size, for instance because of
    /// the client's size hints, so read the frame back afterwards.
    ///
    /// Does nothing when the window does not exist.
    PlacementOutcome place(xcb_window_t window, FrameWish wish);

    /// Returns whether `event` shows that the window manager has processed all placements, late ones too.
    [[nodiscard]] bool isEnd(const Connection::Event& event) const { return m_barrier.isAnswer(event); }

private:
    /// How a window manager is asked to move a window.
    enum class Route { Message, Configure };
    /// A window that is being placed, and the frame it has before and after each request.
    struct Task {
        xcb_window_t window;
        FrameWish wish;
        Rect before;
        WindowFrame now;
        bool isLate = false; ///< the window manager has not processed the last request in time
    };

    void chooseRoute();
    /// Sends the wish by the current route, waits and updates `now`. Sets `isLate` after a timeout, and when
    /// the window has gone.
    void ask(Task& task);
    void send(const Task& task, const Point& deviation);
    void sendMessage(const Task& task, const Point& deviation);
    void sendConfigure(const Task& task, const Point& deviation);
    void normalize(xcb_window_t window, const WindowStates& states);
    void correct(Task& task);
    void moveOnly(Task& task);
    void insist(Task& task);
    void tryOtherRoute(Task& task);
    [[nodiscard]] bool isHeld(const Task& task);
    [[nodiscard]] bool hasStayed(const Task& task) const { return task.now.outer() == task.before; }
    void releaseFromTile(xcb_window_t window);
    void finish(Task& task);

    Connection& m_connection;
    ClientWindows& m_windows;
    std::function<void(xcb_window_t window)> m_beforeRead;
    Barrier m_barrier;
    xcb_window_t m_manager = XCB_WINDOW_NONE; // the check window of the manager that `m_route` is for
    Route m_route = Route::Message;
    bool m_isProven = false; // a window has been moved by `m_route`
};

} // namespace tessarel::x11
