#pragma once

#include "ports/overlay_port.h"

#include <QPainter>
#include <QRect>
#include <QRegion>

namespace tessarel::qt {

/// Figures as they look where no window can be translucent: opaque lines, and nothing between them.
///
/// A plain zone is a thin outline around a dark badge with its label; the highlighted one a thick outline and
/// a badge in the accent colour, hatched with horizontal lines. Every outline has a white edge, and every
/// other line of the hatch is white, so that they are seen on a desktop in the accent colour, too. All in
/// pixels from the top-left corner of the window; lines and badges grow with `scale`, the user's pixels per
/// unit, places do not.
class OutlineFigures {
public:
    /// `window`: the pixels of the window, beyond which nothing is drawn.
    OutlineFigures(const QRect& window, double scale);

    void paint(QPainter& painter, const OverlayFigure& figure) const;

    /// The pixels that belong to `figure`, exactly those that `paint` paints.
    [[nodiscard]] QRegion region(const OverlayFigure& figure) const;

    /// A rectangle around `region`.
    [[nodiscard]] QRect extent(const OverlayFigure& figure) const;

private:
    [[nodiscard]] int ringWidth(const OverlayFigure& figure) const;
    [[nodiscard]] QRegion ring(const OverlayFigure& figure) const;
    [[nodiscard]] QRegion hatch(const OverlayFigure& figure) const;
    [[nodiscard]] bool isWhite(const QRect& line, const QRect& shape) const;
    [[nodiscard]] QRect badge(const OverlayFigure& figure) const;
    void paintBadge(QPainter& painter, const OverlayFigure& figure) const;

    QRect m_window;
    double m_scale;
    int m_line; // the thinnest line
};

} // namespace tessarel::qt
