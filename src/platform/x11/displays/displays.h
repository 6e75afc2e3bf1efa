// SPDX-License-Identifier: MIT

#pragma once

#include "platform/x11/displays/monitors.h"
#include "platform/x11/displays/reserved_space_watch.h"
#include "platform/x11/server/connection.h"
#include "ports/desktop/displays_port.h"

#include <functional>
#include <optional>
#include <vector>

namespace tessarel::x11 {

/// The monitors and their usable areas, in pixels.
class X11Displays : public DisplaysPort {
public:
    /// Returns the outer frame of the active window in pixels of the root window, or `std::nullopt` when no
    /// window is active.
    using FocusedFrame = std::function<std::optional<Rect>()>;

    /// `connection` and `monitors` must outlive this object.
    X11Displays(Connection& connection, Monitors& monitors, FocusedFrame focusedFrame);

    /// Returns all monitors, the primary one first. Sends no request unless something has changed.
    [[nodiscard]] std::vector<Screen> screens() override;
    /// Returns the monitor that shares the largest area with the active window or, without an active window,
    /// the one under the pointer.
    [[nodiscard]] std::optional<Screen> mainScreen() override;

private:
    /// The input that `m_screens` was computed from. The result is cached because a drag reads the screens
    /// several times for each movement.
    struct Basis {
        std::vector<Monitor> monitors;
        Size rootSize;
        ReservedSpace reserved;
    };

    [[nodiscard]] static std::vector<Screen> screensOn(const Basis& basis);
    [[nodiscard]] std::optional<Rect> pointerFrame();

    Connection& m_connection;
    Monitors& m_monitors;
    FocusedFrame m_focusedFrame;
    ReservedSpaceWatch m_reserved;
    Basis m_basis;
    std::vector<Screen> m_screens; // computed from `m_basis`
};

} // namespace tessarel::x11
