#pragma once

#include "platform/x11/displays/monitors.h"
#include "platform/x11/server/connection.h"
#include "platform/x11/windows/client_windows.h"
#include "ports/window_list_port.h"

#include <vector>

namespace tessarel::x11 {

/// The managed windows of the current desktop in the window manager's stacking order.
class X11WindowList : public WindowListPort {
public:
    X11WindowList(Connection& connection, Monitors& monitors, ClientWindows& windows);

    /// Windows of ordinary applications are on layer 0; bars, docks, desktops, menus and the like on others.
    /// Takes two round trips, however many windows there are.
    [[nodiscard]] std::vector<ListedWindow> onScreenWindows() override;

private:
    Connection& m_connection;
    Monitors& m_monitors;
    ClientWindows& m_windows;
};

} // namespace tessarel::x11
