#include "settings_ui/kit/pixel_grid.h"

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
    // The centre of a line lies between two pixels if its width is even, in a pixel if it is odd.
    const double middleOfPixel = wholePixels(width) % 2 == 0 ? 0 : 0.5;
    // Halves are rounded up on both sides of zero, so that the distances between lines do not depend on the
    // painter's origin.
    const double pixel = std::floor(at * scale() + offset - middleOfPixel + 0.5) + middleOfPixel;
    return (pixel - offset) / scale();
}

} // namespace tessarel
