#pragma once

#include "platform/qt/overlay_colors.h"
#include "ports/overlay_port.h"

#include <QColor>
#include <QImage>
#include <QPainter>
#include <QRect>

#include <map>
#include <string>
#include <tuple>

namespace tessarel::qt {

/// Figures as they look where windows may be translucent, in pixels from the top-left corner of the window.
///
/// Labels have a soft dark halo, so that they read on white as well. Their size follows the scale factor that
/// the user has set for all text; everything else is given in pixels.
class TranslucentFigures {
public:
    explicit TranslucentFigures(const QColor& accent = QColor(kAccent)) : m_accent(accent) {}

    [[nodiscard]] const QColor& accent() const { return m_accent; }

    /// `scale`: pixels per unit of the user's text sizes. `onNothing`: the pixels of the shape are known to
    /// be transparent, which makes it faster.
    void paint(QPainter& painter, const OverlayFigure& figure, double scale, bool onNothing = false);

    /// All pixels that `paint` may touch.
    [[nodiscard]] QRect extent(const OverlayFigure& figure, double scale);

private:
    using LabelKey = std::tuple<std::string, double, int, double, double>;

    [[nodiscard]] const QImage& labelImage(const OverlayLabel& label, double scale);

    QColor m_accent;
    std::map<LabelKey, QImage> m_labels; // drawing one takes longer than drawing a zone
};

} // namespace tessarel::qt
