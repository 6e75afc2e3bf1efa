// SPDX-License-Identifier: MIT

#pragma once

#include "platform/x11/server/connection.h"
#include "ports/desktop/rect.h"

#include <xcb/xcb_icccm.h>

namespace tessarel::x11 {

/// The limits of a client window's width or height, in pixels: from `minimum` to `maximum`, in steps of
/// `step`.
struct ExtentHints {
    double minimum = 1;
    double maximum = 65535; ///< the protocol's limit
    double step = 1;

    /// Returns whether these limits explain why a window manager chose `actual` when `wanted` was requested.
    [[nodiscard]] bool explain(double actual, double wanted) const;

    bool operator==(const ExtentHints&) const = default;
};

/// The size hints of a client window.
struct SizeHints {
    ExtentHints width;
    ExtentHints height;
    bool keepsAspect = false; ///< the client limits its aspect ratio, so one extent depends on the other
    /// A requested position is that of the client window itself, whatever frame is around it. Otherwise it is
    /// that of the frame's corner.
    bool hasStaticGravity = false;

    /// Returns whether the client allows only one size.
    [[nodiscard]] bool isFixed() const {
        return width.minimum >= width.maximum && height.minimum >= height.maximum;
    }

    /// Returns whether the hints explain both extents of `actual`. With an aspect ratio, any size is
    /// explained.
    [[nodiscard]] bool explain(const Size& actual, const Size& wanted) const;

    bool operator==(const SizeHints&) const = default;
};

/// Converts the hints in WM_NORMAL_HINTS. Missing and implausible values set no limit.
[[nodiscard]] SizeHints sizeHintsFrom(const xcb_size_hints_t& hints);

/// Reads the size hints of `window`. Takes a round trip. A window that does not exist has no limits.
[[nodiscard]] SizeHints readSizeHints(Connection& connection, xcb_window_t window);

} // namespace tessarel::x11
