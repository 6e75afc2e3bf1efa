// SPDX-License-Identifier: MIT

#include "ports/desktop/rect.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace tessarel {

namespace {
constexpr double kInfinity = std::numeric_limits<double>::infinity();
}

bool Point::isFinite() const {
    return std::isfinite(x) && std::isfinite(y);
}

bool Size::isFinite() const {
    return std::isfinite(width) && std::isfinite(height);
}

bool Rect::isFinite() const {
    return origin().isFinite() && size().isFinite();
}

Rect Rect::null() {
    return {kInfinity, kInfinity, 0, 0};
}

bool Rect::isNull() const {
    return x == kInfinity || y == kInfinity;
}

double Rect::minX() const {
    return width < 0 ? x + width : x;
}

double Rect::minY() const {
    return height < 0 ? y + height : y;
}

double Rect::maxX() const {
    return width < 0 ? x : x + width;
}

double Rect::maxY() const {
    return height < 0 ? y : y + height;
}

double Rect::midX() const {
    return minX() + absWidth() * 0.5;
}

double Rect::midY() const {
    return minY() + absHeight() * 0.5;
}

double Rect::absWidth() const {
    return std::abs(width);
}

double Rect::absHeight() const {
    return std::abs(height);
}

bool Rect::contains(const Point& point) const {
    return point.x >= minX() && point.x < maxX() && point.y >= minY() && point.y < maxY();
}

Rect Rect::intersection(const Rect& other) const {
    if (isNull() || other.isNull())
        return null();
    const double left = std::max(minX(), other.minX());
    const double top = std::max(minY(), other.minY());
    const double right = std::min(maxX(), other.maxX());
    const double bottom = std::min(maxY(), other.maxY());
    if (right < left || bottom < top)
        return null();
    return {left, top, right - left, bottom - top};
}

Rect Rect::inset(double dx, double dy) const {
    if (isNull())
        return null();
    const double insetWidth = absWidth() - 2 * dx;
    const double insetHeight = absHeight() - 2 * dy;
    if (insetWidth < 0 || insetHeight < 0)
        return null();
    return {minX() + dx, minY() + dy, insetWidth, insetHeight};
}

} // namespace tessarel
