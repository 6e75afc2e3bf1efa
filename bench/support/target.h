// SPDX-License-Identifier: MIT

#pragma once

#include "support/clock.h"
#include "support/connection.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tessarel::bench {

/// Outer frame of a window in pixels, including its borders.
struct Frame {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    bool operator==(const Frame&) const = default;
};

/// Size of a client window in pixels, without its borders.
struct ClientSize {
    int width = 0;
    int height = 0;

    bool operator==(const ClientSize&) const = default;
};

/// The events of the target after a key press.
struct Reaction {
    std::optional<Clock::time_point> last; ///< time of the last ConfigureNotify; empty if none came in time
    int events = 0;                        ///< number of ConfigureNotify events of the window and its frame
};

/// The active window of the desktop, which the contenders move and the benchmark watches.
class Target {
public:
    /// Opens a window of the benchmark itself, which paints nothing.
    Target();
    /// Starts `command` and uses the window that it opens.
    explicit Target(const std::vector<std::string>& command);

    /// Drops all events that have arrived so far.
    void discardEvents();
    /// Waits up to `patience` for the first ConfigureNotify, then until none has come for 50 ms.
    [[nodiscard]] Reaction untilQuiet(Milliseconds patience) { return untilQuiet(patience, std::nullopt); }
    /// Waits up to `patience` until the client window has the size `size`, then until no further
    /// ConfigureNotify with that size has come for 50 ms. Returns the time of the last one; empty if none
    /// came.
    [[nodiscard]] std::optional<Clock::time_point> untilOfSize(const ClientSize& size, Milliseconds patience);
    [[nodiscard]] Frame frame() const;
    [[nodiscard]] ClientSize clientSize() const;
    [[nodiscard]] xcb_window_t window() const { return m_window; }

private:
    xcb_window_t awaitActive(xcb_window_t notThis);
    void watch();
    [[nodiscard]] xcb_window_t activeWindow() const;
    bool takeEvents(Reaction& reaction, const std::optional<ClientSize>& size = std::nullopt);
    [[nodiscard]] Reaction untilQuiet(Milliseconds patience, const std::optional<ClientSize>& size);

    Connection m_connection;
    xcb_connection_t* m_x = m_connection.get();
    xcb_atom_t m_activeWindow = m_connection.atom("_NET_ACTIVE_WINDOW");
    xcb_atom_t m_frameExtents = m_connection.atom("_NET_FRAME_EXTENTS");
    std::unique_ptr<ChildProcess> m_program; // null when the window is our own
    xcb_window_t m_window = XCB_NONE;
};

} // namespace tessarel::bench
