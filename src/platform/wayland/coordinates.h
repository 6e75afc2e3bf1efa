// SPDX-License-Identifier: MIT

#pragma once

#include "ports/desktop/rect.h"

#include <cmath>
#include <optional>

namespace tessarel::wayland {

// Conversions between three coordinate systems, all in logical pixels:
// - the compositor's: origin at the top-left corner of the area that all displays cover, y down;
// - accessibility ("ax"): origin at the top-left corner of the primary display, y down;
// - screen: origin at the bottom-left corner of the primary display, y up.
// `primary` is the frame of the primary display in the compositor's coordinates.

[[nodiscard]] inline Rect axFromCompositor(const Rect& frame, const Rect& primary) {
    return {frame.x - primary.x, frame.y - primary.y, frame.width, frame.height};
}

[[nodiscard]] inline Rect screenFromCompositor(const Rect& frame, const Rect& primary) {
    return {frame.x - primary.x, primary.y + primary.height - frame.y - frame.height, frame.width,
            frame.height};
}

[[nodiscard]] inline Rect compositorFromScreen(const Rect& screenFrame, const Rect& primary) {
    return {screenFrame.x + primary.x, primary.y + primary.height - screenFrame.y - screenFrame.height,
            screenFrame.width, screenFrame.height};
}

[[nodiscard]] inline Point screenFromCompositor(const Point& point, const Rect& primary) {
    return {point.x - primary.x, primary.y + primary.height - point.y};
}

/// Returns the rounded coordinate, or `std::nullopt` if it is not finite or outside any desktop.
[[nodiscard]] inline std::optional<double> wholePixels(double value) {
    constexpr double kFarthest = 1 << 20;
    return std::isfinite(value) && std::abs(value) <= kFarthest ? std::optional(std::round(value))
                                                                : std::nullopt;
}

/// Returns `std::nullopt` for a point that no window can have.
[[nodiscard]] inline std::optional<Point> compositorFromAx(const Point& axPoint, const Rect& primary) {
    const auto x = wholePixels(axPoint.x);
    const auto y = wholePixels(axPoint.y);
    return x && y ? std::optional(Point{*x + primary.x, *y + primary.y}) : std::nullopt;
}

/// Returns `std::nullopt` for a size that no window can have.
[[nodiscard]] inline std::optional<Size> compositorFromAx(const Size& size) {
    const auto width = wholePixels(size.width);
    const auto height = wholePixels(size.height);
    return width && height && *width >= 0 && *height >= 0 ? std::optional(Size{*width, *height})
                                                          : std::nullopt;
}

} // namespace tessarel::wayland
