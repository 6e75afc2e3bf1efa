// SPDX-License-Identifier: MIT

#pragma once

#include "ports/desktop/rect.h"

#include <algorithm>
#include <cmath>
#include <limits>

/// Rectangle arithmetic of the reference engine, independent of the engine's own. Sizes may be negative.
namespace tessarel::reference {

[[nodiscard]] inline double left(const Rect& r) {
    return r.width < 0 ? r.x + r.width : r.x;
}
[[nodiscard]] inline double top(const Rect& r) {
    return r.height < 0 ? r.y + r.height : r.y;
}
[[nodiscard]] inline double wide(const Rect& r) {
    return std::abs(r.width);
}
[[nodiscard]] inline double high(const Rect& r) {
    return std::abs(r.height);
}
[[nodiscard]] inline double right(const Rect& r) {
    return left(r) + wide(r);
}
[[nodiscard]] inline double bottom(const Rect& r) {
    return top(r) + high(r);
}

[[nodiscard]] inline double sharedArea(const Rect& a, const Rect& b) {
    const double width = std::min(right(a), right(b)) - std::max(left(a), left(b));
    const double height = std::min(bottom(a), bottom(b)) - std::max(top(a), top(b));
    return width < 0 || height < 0 ? 0 : width * height;
}

/// Returns whether `r` is the null rectangle, whose origin is infinite.
[[nodiscard]] inline bool isNothing(const Rect& r) {
    return std::isinf(r.x);
}

[[nodiscard]] inline Rect shrunk(const Rect& r, double by) {
    constexpr double kInfinite = std::numeric_limits<double>::infinity();
    const Rect smaller{left(r) + by, top(r) + by, wide(r) - 2 * by, high(r) - 2 * by};
    const bool isLess = smaller.width < 0 || smaller.height < 0;
    return isNothing(r) || isLess ? Rect{kInfinite, kInfinite, 0, 0} : smaller;
}

[[nodiscard]] inline bool isNear(const Rect& a, const Rect& b, double tolerance) {
    return std::abs(left(a) - left(b)) <= tolerance && std::abs(top(a) - top(b)) <= tolerance &&
           std::abs(wide(a) - wide(b)) <= tolerance && std::abs(high(a) - high(b)) <= tolerance;
}

} // namespace tessarel::reference
