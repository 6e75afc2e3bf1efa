#pragma once

#include "platform/x11/displays/monitors.h"
#include "platform/x11/displays/reserved_space_watch.h"
#include "platform/x11/server/connection.h"
#include "ports/displays_port.h"

#include <functional>
#include <optional>
#include <vector>

namespace tessarel::x11 {

/// The monitors in pixels, with what panels leave of them. Costs no request as long as nothing has changed.
class X11Displays : public DisplaysPort {
public:
    /// Returns the frame of the window that has the focus, in pixels of the root window.
    using FocusedFrame = std::function<std::optional<Rect>()>;

    X11Displays(Connection& connection, Monitors& monitors, FocusedFrame focusedFrame);

    [[nodiscard]] std::vector<Screen> screens() override;
    [[nodiscard]] std::optional<Screen> mainScreen() override;

private:
    /// What the screens are reckoned from. A drag asks for them several times at each movement.
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
    std::vector<Screen> m_screens; // on that basis
};

} // namespace tessarel::x11
