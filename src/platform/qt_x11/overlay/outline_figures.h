// SPDX-License-Identifier: MIT

#pragma once

#include "ports/desktop/overlay_port.h"
#include "qt_values/color.h"

#include <QColor>
#include <QPainter>
#include <QRect>
#include <QRegion>

#include <array>

namespace tessarel::qt {

/// Draws the overlay's figures for a desktop without a compositor: opaque lines, with the desktop visible
/// between them.
///
/// A plain zone is a thin outline with its label on a dark badge in the middle. The highlighted zone has a
/// thick outline, a hatch of horizontal lines and a badge in the accent colour. Outlines have a white edge,
/// and every other line of the hatch is white, so that both are visible even on a background in the accent
/// colour.
///
/// Positions are in pixels from the top-left corner of the window. Line widths and badges grow with `scale`,
/// positions do not.
class OutlineFigures {
public:
    /// Returns the colours of the figures. Only letters have others.
    [[nodiscard]] static std::array<QColor, 3> colors(const QColor& accent);

    /// `window` is the area of the window in pixels; drawing is clipped to it. `scale` is the number of
    /// pixels per device-independent unit.
    OutlineFigures(const QRect& window, double scale, const QColor& accent = QColor(kAccent));

    /// Paints `figure`. `painter` must be scaled to pixels.
    void paint(QPainter& painter, const OverlayFigure& figure) const;

    /// Paints only the label of `figure`, on its badge.
    void paintLabel(QPainter& painter, const OverlayFigure& figure) const;

    /// Returns exactly the pixels that `paint` paints for `figure`, as the shape for the window.
    [[nodiscard]] QRegion region(const OverlayFigure& figure) const;

    /// Returns the rectangle behind the label: square for a short text, wider for a long one, empty without a
    /// text.
    [[nodiscard]] QRect badge(const OverlayFigure& figure) const;

    /// Returns a rectangle that contains `region`; cheaper to compute.
    [[nodiscard]] QRect extent(const OverlayFigure& figure) const;

private:
    [[nodiscard]] int ringWidth(const OverlayFigure& figure) const;
    [[nodiscard]] QRegion ring(const OverlayFigure& figure) const;
    [[nodiscard]] QRegion hatch(const OverlayFigure& figure) const;
    [[nodiscard]] bool isWhite(const QRect& line, const QRect& shape) const;

    QRect m_window;
    double m_scale;
    QColor m_accent;
    int m_line; // width of the thinnest line, in pixels
};

} // namespace tessarel::qt
