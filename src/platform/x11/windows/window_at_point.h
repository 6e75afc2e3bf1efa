#pragma once

#include "platform/x11/server/connection.h"
#include "platform/x11/windows/client_windows.h"
#include "ports/rect.h"

#include <optional>

namespace tessarel::x11 {

/// The managed window that is on top at `rootPoint`, in whole pixels of the root window. Empty over the bare
/// desktop, over windows that nobody manages, such as menus, and over the invisible borders that some
/// managers draw around their frames.
[[nodiscard]] std::optional<xcb_window_t> windowAtPoint(Connection& connection, ClientWindows& windows,
                                                        const Point& rootPoint);

} // namespace tessarel::x11
