// SPDX-License-Identifier: MIT

#include "platform/qt/overlay/overlay_pixels.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tessarel::qt {

namespace {

/// Far beyond any desktop (X11 coordinates have 16 bits), and small enough for sums of two edges in an `int`.
constexpr double kLimit = 1 << 20;

int lower(double edge) {
    return static_cast<int>(std::floor(std::clamp(edge, -kLimit, kLimit)));
}

int upper(double edge) {
    return static_cast<int>(std::ceil(std::clamp(edge, -kLimit, kLimit)));
}

QRect fromEdges(int left, int top, int right, int bottom) {
    return {left, top, right - left, bottom - top};
}

} // namespace

QRect pixels(const Rect& rect) {
    if (rect.isNull())
        return {};
    return fromEdges(lower(rect.minX()), lower(rect.minY()), upper(rect.maxX()), upper(rect.maxY()));
}

QRect pixels(const QRect& rect, double scale) {
    return pixels(Rect{rect.x() * scale, rect.y() * scale, rect.width() * scale, rect.height() * scale});
}

QRect units(const QRect& pixels, double scale) {
    return qt::pixels(pixels, 1 / scale);
}

QRegion withLabels(QRegion region, const std::vector<QRect>& labels) {
    bool hasGrown = true;
    while (std::exchange(hasGrown, false)) {
        for (const QRect& label : labels) {
            if (!region.intersects(label) || (QRegion(label) - region).isEmpty())
                continue;
            region += label;
            hasGrown = true;
        }
    }
    return region;
}

} // namespace tessarel::qt
