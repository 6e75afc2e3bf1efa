// SPDX-License-Identifier: MIT

#pragma once

#include "ports/desktop/overlay_port.h"
#include "qt_values/color.h"

#include <QColor>
#include <QImage>
#include <QPainter>
#include <QRect>
#include <QRegion>

#include <map>
#include <string>
#include <tuple>
#include <vector>

namespace tessarel::qt {

/// Paints figures on translucent windows. Coordinates are pixels from the top-left corner of the window, y
/// down.
///
/// Labels have a soft dark halo, which keeps them readable on white. Their font size is multiplied by the
/// scale factor that the user has set for all text; all other numbers are pixels.
class TranslucentFigures {
public:
    explicit TranslucentFigures(const QColor& accent = QColor(kAccent)) : m_accent(accent) {}

    [[nodiscard]] const QColor& accent() const { return m_accent; }

    /// Paints `figure`. `scale` is the number of pixels per point of text. `onNothing` says that the pixels
    /// of the shape are known to be transparent, which is faster to paint on.
    void paint(QPainter& painter, const OverlayFigure& figure, double scale, bool onNothing = false);

    /// Paints the figures that touch `area`, in this order, and labels of highlighted figures on top. Leaves
    /// out other labels where these are, as they are translucent and could not be told apart. `onNothing`
    /// says that `area` is known to be transparent.
    void paintAll(QPainter& painter, const std::vector<OverlayFigure>& figures, const QRegion& area,
                  double scale, bool onNothing);

    /// Returns a rectangle that contains every pixel that `paint` may change.
    [[nodiscard]] QRect extent(const OverlayFigure& figure, double scale);

    /// Returns a rectangle that contains the label of `figure`; empty without a text.
    [[nodiscard]] QRect labelExtent(const OverlayFigure& figure, double scale);

private:
    /// Text, font size, font weight, alpha and scale of a label.
    using LabelKey = std::tuple<std::string, double, int, double, double>;

    void paintShape(QPainter& painter, const OverlayFigure& figure, bool onNothing) const;
    void paintLabel(QPainter& painter, const OverlayFigure& figure, double scale);
    [[nodiscard]] const QImage& labelImage(const OverlayLabel& label, double scale);

    QColor m_accent;
    /// Cache: rendering a label takes longer than painting a zone.
    std::map<LabelKey, QImage> m_labels;
};

} // namespace tessarel::qt
