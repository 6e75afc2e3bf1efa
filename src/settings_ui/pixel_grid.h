#pragma once

#include <QTransform>

namespace tessarel {

/// The pixels under a painter, so that straight lines cover whole ones at any scale.
///
/// All coordinates and widths are the painter's; along both axes one unit is the same number of pixels. The
/// transform is that of `QPainter::deviceTransform()`, without rotation.
class PixelGrid {
public:
    explicit PixelGrid(const QTransform& deviceTransform) : m_transform(deviceTransform) {}

    /// The width nearest to `width` that is a whole number of pixels, at least one.
    [[nodiscard]] double wholeWidth(double width) const;

    /// Where the middle of a line of `width` has to be so that its sharp part covers whole pixels: next to
    /// `x` or `y`.
    [[nodiscard]] double lineX(double x, double width) const;
    [[nodiscard]] double lineY(double y, double width) const;

private:
    [[nodiscard]] double line(double at, double width, double offset) const;
    [[nodiscard]] double scale() const { return m_transform.m11(); }
    [[nodiscard]] int wholePixels(double width) const;

    QTransform m_transform;
};

} // namespace tessarel
