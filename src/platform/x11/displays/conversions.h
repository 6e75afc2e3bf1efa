#pragma once

#include "ports/rect.h"

#include <optional>

namespace tessarel::x11 {

/// Between pixels of the root window (y down, origin at the corner of the whole desktop) and the coordinates
/// of the ports, which both start at the primary monitor. `primary` is that monitor in root pixels.

[[nodiscard]] Rect axFromRoot(const Rect& rootFrame, const Point& primaryOrigin);
[[nodiscard]] Rect screenFromRoot(const Rect& rootFrame, const Rect& primary);
[[nodiscard]] Rect rootFromScreen(const Rect& screenFrame, const Rect& primary);

/// Whole pixels of the root window; empty when the point is not finite or beyond what the protocol's numbers
/// hold.
[[nodiscard]] std::optional<Point> rootFromAx(const Point& axPoint, const Point& primaryOrigin);
/// Whole pixels; empty when the size is not finite, negative or beyond what the protocol's numbers hold.
[[nodiscard]] std::optional<Size> rootFromAx(const Size& size);

} // namespace tessarel::x11
