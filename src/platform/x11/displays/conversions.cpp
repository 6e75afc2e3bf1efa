// SPDX-License-Identifier: MIT

#include "platform/x11/displays/conversions.h"

#include <cmath>
#include <cstdint>
#include <limits>

namespace tessarel::x11 {

namespace {

/// Returns `value` rounded to a whole number, or `std::nullopt` when that does not fit into `Integer`. NaN
/// fails both comparisons and is therefore rejected.
template <class Integer>
std::optional<double> whole(double value) {
    const double rounded = std::round(value);
    const bool fits =
        rounded >= std::numeric_limits<Integer>::min() && rounded <= std::numeric_limits<Integer>::max();
    return fits ? std::optional(rounded) : std::nullopt;
}

} // namespace

Rect axFromRoot(const Rect& rootFrame, const Point& primaryOrigin) {
    return {rootFrame.x - primaryOrigin.x, rootFrame.y - primaryOrigin.y, rootFrame.width, rootFrame.height};
}

Rect screenFromRoot(const Rect& rootFrame, const Rect& primary) {
    return {rootFrame.x - primary.x, primary.maxY() - rootFrame.maxY(), rootFrame.width, rootFrame.height};
}

Rect rootFromScreen(const Rect& screenFrame, const Rect& primary) {
    return {screenFrame.x + primary.x, primary.maxY() - screenFrame.maxY(), screenFrame.width,
            screenFrame.height};
}

// Core protocol requests carry positions as INT16 and extents as CARD16.

std::optional<Point> rootFromAx(const Point& axPoint, const Point& primaryOrigin) {
    const auto x = whole<std::int16_t>(axPoint.x + primaryOrigin.x);
    const auto y = whole<std::int16_t>(axPoint.y + primaryOrigin.y);
    return x && y ? std::optional(Point{*x, *y}) : std::nullopt;
}

std::optional<Size> rootFromAx(const Size& size) {
    const auto width = whole<std::uint16_t>(size.width);
    const auto height = whole<std::uint16_t>(size.height);
    return width && height ? std::optional(Size{*width, *height}) : std::nullopt;
}

} // namespace tessarel::x11
