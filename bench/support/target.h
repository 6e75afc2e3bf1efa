#pragma once

#include "support/child_process.h"
#include "support/clock.h"
#include "support/connection.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tessarel::bench {

/// Outer frame of a window in pixels, its borders included.
struct Frame {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    bool operator==(const Frame&) const = default;
};

/// What was seen of the target after a key press.
struct Reaction {
    std::optional<Clock::time_point>
        last;       ///< when the last ConfigureNotify came; empty when none came in time
    int events = 0; ///< ConfigureNotify of the window and of its frame
};

/// The active window of the desktop, which the contenders move and the bench watches.
class Target {
public:
    /// A window of the bench itself, which paints nothing.
    Target();
    /// The window that `command` opens.
    explicit Target(const std::vector<std::string>& command);

    /// Forgets what has come so far.
    void discardEvents();
    /// Waits for the first ConfigureNotify up to `patience`, then until none has come for a while.
    [[nodiscard]] Reaction untilQuiet(Milliseconds patience);
    [[nodiscard]] Frame frame() const;

private:
    xcb_window_t awaitActive(xcb_window_t notThis);
    void watch();
    [[nodiscard]] xcb_window_t activeWindow() const;
    bool takeEvents(Reaction& reaction);

    Connection m_connection;
    xcb_connection_t* m_x = m_connection.get();
    xcb_atom_t m_activeWindow = m_connection.atom("_NET_ACTIVE_WINDOW");
    xcb_atom_t m_frameExtents = m_connection.atom("_NET_FRAME_EXTENTS");
    std::unique_ptr<ChildProcess> m_program; // none when the window is our own
    xcb_window_t m_window = XCB_NONE;
};

} // namespace tessarel::bench
