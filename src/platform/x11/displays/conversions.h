// SPDX-License-Identifier: MIT

#pragma once

#include "ports/desktop/rect.h"

#include <optional>

namespace tessarel::x11 {

// Conversions between three coordinate systems, all in pixels:
// - root: origin at the top-left corner of the root window, which spans all monitors, y down;
// - accessibility ("ax"): origin at the top-left corner of the primary monitor, y down;
// - screen: origin at the bottom-left corner of the primary monitor, y up.
// `primary` is the frame of the primary monitor, and `primaryOrigin` its top-left corner, in root pixels.

/// Converts a rectangle from root to accessibility coordinates.
[[nodiscard]] Rect axFromRoot(const Rect& rootFrame, const Point& primaryOrigin);
/// Converts a rectangle from root to screen coordinates. The origin of the result is its bottom-left corner.
[[nodiscard]] Rect screenFromRoot(const Rect& rootFrame, const Rect& primary);
/// Converts a rectangle from screen to root coordinates. The origin of the result is its top-left corner.
[[nodiscard]] Rect rootFromScreen(const Rect& screenFrame, const Rect& primary);

/// Converts a point from accessibility to root coordinates and rounds it to whole pixels. Returns
/// `std::nullopt` when the point is not finite or does not fit into the protocol's 16-bit positions.
[[nodiscard]] std::optional<Point> rootFromAx(const Point& axPoint, const Point& primaryOrigin);
/// Rounds a size to whole pixels. Returns `std::nullopt` when the size is not finite, negative or does not
/// fit into the protocol's 16-bit extents.
[[nodiscard]] std::optional<Size> rootFromAx(const Size& size);

} // namespace tessarel::x11
