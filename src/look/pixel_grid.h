// SPDX-License-Identifier: MIT

#pragma once

#include <QRectF>
#include <QTransform>

namespace tessarel {

/// Aligns straight lines with the device pixels under a painter, so that they are sharp at any scale.
///
/// Coordinates and widths are in the painter's logical units. The transform is that of
/// `QPainter::deviceTransform()`; it must not rotate, and must scale both axes equally.
class PixelGrid {
public:
    explicit PixelGrid(const QTransform& deviceTransform) : m_transform(deviceTransform) {}

    /// Returns the width nearest to `width` that is a whole number of device pixels, at least one.
    [[nodiscard]] double wholeWidth(double width) const;

    /// Returns the width at which a line is sharp: `width` itself if a device-independent pixel is a whole
    /// number of device pixels, otherwise `width` rounded to whole device pixels.
    [[nodiscard]] double sharpWidth(double width) const;

    /// Return the coordinate nearest to `x` or `y` at which the centre of a line has to be, so that its
    /// width, rounded to whole pixels, coincides with device pixels.
    [[nodiscard]] double lineX(double x, double width) const;
    [[nodiscard]] double lineY(double y, double width) const;

    /// Returns the largest rectangle of whole device pixels inside `rect`.
    [[nodiscard]] QRectF inside(const QRectF& rect) const;

private:
    /// `offset` is the translation of the transform along the axis, in device pixels.
    [[nodiscard]] double line(double at, double width, double offset) const;
    [[nodiscard]] double scale() const { return m_transform.m11(); }
    [[nodiscard]] int wholePixels(double width) const;

    QTransform m_transform;
};

} // namespace tessarel
