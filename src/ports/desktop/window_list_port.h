// SPDX-License-Identifier: MIT

#pragma once

#include "ports/desktop/rect.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace tessarel {

/// A window on the screen, as listed by the window server. A value that the server does not report, or
/// reports in an invalid form, is empty.
struct ListedWindow {
    std::optional<std::int64_t> layer;    ///< 0 for windows of ordinary applications
    std::optional<std::int64_t> ownerPid; ///< not checked to be within the range of `ProcessId`
    /// Visible outer frame: origin at the top-left corner of the primary display, y down.
    std::optional<Rect> axBounds;
    std::optional<double> alpha; ///< from 0, transparent, to 1, opaque
    /// Of its element (see `AccessibilityPort::key`). Always empty where the two interfaces have no common
    /// window id.
    std::optional<std::uintptr_t> key = {};

    bool operator==(const ListedWindow&) const = default;
};

/// The windows of all programs in stacking order.
class WindowListPort {
public:
    virtual ~WindowListPort() = default;

    /// Returns the windows that are on the screen now, front to back, without those of the desktop itself.
    /// Empty if the window server does not reply. Sends no request to any application.
    [[nodiscard]] virtual std::vector<ListedWindow> onScreenWindows() = 0;
};

} // namespace tessarel
