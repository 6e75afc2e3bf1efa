// SPDX-License-Identifier: MIT

#pragma once

#include "platform/x11/server/connection.h"
#include "platform/x11/windows/client_windows.h"
#include "ports/desktop/rect.h"

#include <optional>

namespace tessarel::x11 {

/// Returns the top-most managed window at `rootPoint`, which is in whole pixels of the root window, y down.
///
/// Returns `std::nullopt` over the bare root window, over unmanaged (override-redirect) windows such as
/// menus, and over the invisible borders that some window managers, such as mutter and marco, put around
/// their frames.
[[nodiscard]] std::optional<xcb_window_t> windowAtPoint(Connection& connection, ClientWindows& windows,
                                                        const Point& rootPoint);

} // namespace tessarel::x11
