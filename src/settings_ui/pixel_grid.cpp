#include "settings_ui/pixel_grid.h"

#include <algorithm>
#include <cmath>

namespace tessarel {

int PixelGrid::wholePixels(double width) const {
    return std::max(1, static_cast<int>(std::round(width * scale())));
}

double PixelGrid::wholeWidth(double width) const {
    return wholePixels(width) / scale();
}

double PixelGrid::lineX(double x, double width) const {
    return line(x, width, m_transform.dx());
}

double PixelGrid::lineY(double y, double width) const {
    return line(y, width, m_transform.dy());
}

double PixelGrid::line(double at, double width, double offset) const {
    const double middleOfPixel = wholePixels(width) % 2 == 0 ? 0 : 0.5;
    // Halves go one way on either side of zero: wherever the painter begins, the lines keep their distances.
    const double pixel = std::floor(at * scale() + offset - middleOfPixel + 0.5) + middleOfPixel;
    return (pixel - offset) / scale();
}

} // namespace tessarel
