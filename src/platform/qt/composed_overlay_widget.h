#pragma once

#include "platform/qt/translucent_figures.h"
#include "ports/overlay_port.h"

#include <QColor>
#include <QRegion>
#include <QWidget>

#include <vector>

namespace tessarel::qt {

/// A translucent window that figures are painted in: above all others, out of reach of mouse and keyboard.
/// Its figures are in units of Qt's and painted as finely as the display can show them.
class ComposedOverlayWidget : public QWidget {
public:
    ComposedOverlayWidget();

    /// The colour of all figures that are painted from now on.
    void setAccent(const QColor& accent);

    /// From now on shows `figures`; only those whose bounds touch `changed` are painted anew.
    void setFigures(const std::vector<OverlayFigure>& figures, const std::vector<Rect>& changed);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] QRect extent(const OverlayFigure& figure);
    [[nodiscard]] QRegion extents(const std::vector<Rect>& areas);

    std::vector<OverlayFigure> m_figures;
    TranslucentFigures m_painted;
};

} // namespace tessarel::qt
