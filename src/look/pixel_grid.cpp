// SPDX-License-Identifier: MIT

#include "look/pixel_grid.h"

#include <QPointF>

#include <algorithm>
#include <cmath>

namespace tessarel {

int PixelGrid::wholePixels(double width) const {
    return std::max(1, static_cast<int>(std::round(width * scale())));
}

double PixelGrid::wholeWidth(double width) const {
    return wholePixels(width) / scale();
}

double PixelGrid::sharpWidth(double width) const {
    return scale() == std::round(scale()) ? width : wholeWidth(width);
}

double PixelGrid::lineX(double x, double width) const {
    return line(x, width, m_transform.dx());
}

double PixelGrid::lineY(double y, double width) const {
    return line(y, width, m_transform.dy());
}

QRectF PixelGrid::inside(const QRectF& rect) const {
    constexpr double kHardly = 1e-3; // forgives rounding errors in the transform
    const auto up = [this](double at, double offset) {
        return (std::ceil(at * scale() + offset - kHardly) - offset) / scale();
    };
    const auto down = [this](double at, double offset) {
        return (std::floor(at * scale() + offset + kHardly) - offset) / scale();
    };
    const double dx = m_transform.dx();
    const double dy = m_transform.dy();
    return {QPointF(up(rect.left(), dx), up(rect.top(), dy)),
            QPointF(down(rect.right(), dx), down(rect.bottom(), dy))};
}

double PixelGrid::line(double at, double width, double offset) const {
    // The centre of a line lies between two pixels if its width is even, in a pixel if it is odd.
    const double middleOfPixel = wholePixels(width) % 2 == 0 ? 0 : 0.5;
    // Halves are rounded up on both sides of zero, so that the distances between lines do not depend on the
    // painter's origin.
    const double pixel = std::floor(at * scale() + offset - middleOfPixel + 0.5) + middleOfPixel;
    return (pixel - offset) / scale();
}

} // namespace tessarel
