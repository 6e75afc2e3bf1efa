#pragma once

#include "platform/x11/client_windows.h"
#include "platform/x11/connection.h"
#include "platform/x11/monitors.h"
#include "platform/x11/reserved_space_watch.h"
#include "ports/displays_port.h"

#include <optional>
#include <vector>

namespace tessarel::x11 {

/// The monitors in pixels, with what panels leave of them. Costs no request as long as nothing has changed.
class X11Displays : public DisplaysPort {
public:
    X11Displays(Connection& connection, Monitors& monitors, ClientWindows& windows);

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
    [[nodiscard]] std::optional<Rect> activeFrame();
    [[nodiscard]] std::optional<Rect> pointerFrame();

    Connection& m_connection;
    Monitors& m_monitors;
    ClientWindows& m_windows;
    ReservedSpaceWatch m_reserved;
    Basis m_basis;
    std::vector<Screen> m_screens; // on that basis
};

} // namespace tessarel::x11
