// SPDX-License-Identifier: MIT

#pragma once

#include "platform/x11/displays/monitors.h"
#include "platform/x11/server/connection.h"
#include "platform/x11/windows/client_windows.h"
#include "ports/desktop/window_list_port.h"

#include <vector>

namespace tessarel::x11 {

/// The visible managed windows of the current desktop, in the server's stacking order.
class X11WindowList : public WindowListPort {
public:
    /// All referenced objects must outlive this one.
    X11WindowList(Connection& connection, Monitors& monitors, ClientWindows& windows);

    /// Returns the windows front to back. Ordinary application windows are on layer 0; panels, docks,
    /// desktops, menus and the like on another layer. Minimised windows are left out.
    ///
    /// Takes two round trips, however many windows there are, and one more for each further level of nested
    /// frames.
    [[nodiscard]] std::vector<ListedWindow> onScreenWindows() override;

private:
    Connection& m_connection;
    Monitors& m_monitors;
    ClientWindows& m_windows;
};

} // namespace tessarel::x11
