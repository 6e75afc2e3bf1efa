// SPDX-License-Identifier: MIT

#pragma once

#include "platform/qt/overlay/translucent_figures.h"
#include "ports/desktop/overlay_port.h"

#include <QColor>
#include <QRegion>
#include <QWidget>

#include <vector>

namespace tessarel::qt {

/// A translucent window above all others that ignores the mouse and never takes the keyboard focus. Figures
/// are given in Qt's units, from the top-left corner, and painted at the full resolution of the display.
class ComposedOverlayWidget : public QWidget {
public:
    ComposedOverlayWidget();

    /// Sets the colour of all figures, and repaints them if it is a different one.
    void setAccent(const QColor& accent);

    /// Replaces the figures and repaints only what `changed` covers, and the labels of figures that touch it.
    void setFigures(const std::vector<OverlayFigure>& figures, const std::vector<Rect>& changed);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] QRect labelExtent(const OverlayFigure& figure);
    [[nodiscard]] QRegion extents(const std::vector<Rect>& areas);

    std::vector<OverlayFigure> m_figures;
    TranslucentFigures m_painted;
};

} // namespace tessarel::qt
