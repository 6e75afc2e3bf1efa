// SPDX-License-Identifier: MIT

#pragma once

#include "platform/x11/server/connection.h"
#include "ports/desktop/rect.h"

#include <cstdint>
#include <vector>

namespace tessarel::x11 {

/// A monitor as RandR describes it. These are RandR 1.5 monitors rather than CRTCs or outputs, so monitors
/// that the user has defined (`xrandr --setmonitor`) are included.
struct Monitor {
    std::uint64_t id = 0; ///< the atom of its name; the root window's id where RandR is missing
    Rect rootFrame;       ///< pixels of the root window, y down

    bool operator==(const Monitor&) const = default;
};

/// The monitors of the desktop, cached until RandR or the root window reports a change.
class Monitors {
public:
    /// `connection` must outlive this object.
    explicit Monitors(Connection& connection);

    /// Returns the primary monitor first, then the others in the server's order. Monitors that mirror another
    /// one are left out: they are the same place to the user. Where RandR 1.5 is missing
    /// or lists no monitor, the whole root window is the only monitor. Empty when the connection is lost.
    [[nodiscard]] const std::vector<Monitor>& all();
    /// Returns the size of the root window in pixels; empty when the connection is lost.
    [[nodiscard]] Size rootSize();
    /// Returns the top-left corner of the primary monitor in pixels of the root window. It is the origin of
    /// the accessibility coordinates.
    [[nodiscard]] Point primaryOrigin();

private:
    void note(const Connection::Event& event);
    void refresh();

    Connection& m_connection;
    bool m_isCurrent = false;
    std::vector<Monitor> m_monitors;
    Size m_rootSize;
    SubscriptionPtr m_observer;
};

} // namespace tessarel::x11
