#pragma once

#include "platform/qt/translucent_figures.h"
#include "ports/overlay_port.h"

#include <QRect>
#include <QRegion>
#include <QWidget>

#include <vector>

namespace tessarel::qt {

/// A window of the desktop's that figures are painted in: above all others, out of reach of mouse and
/// keyboard, in nobody's list. All in pixels, whatever the scale factor.
class X11OverlayWidget : public QWidget {
public:
    enum class Kind {
        Translucent, ///< for a desktop with a compositor
        Outlined     ///< opaque lines, and no window between them
    };

    /// `figures` outlives the surface, which tells no change by itself.
    X11OverlayWidget(Kind kind, const std::vector<OverlayFigure>& figures);

    [[nodiscard]] Kind kind() const { return m_kind; }

    /// `frame`: pixels of the desktop.
    void cover(const QRect& frame);

    /// Shows all figures as they are now, in front of all other windows.
    void appear();

    /// Paints the figures as they are now in `changed` pixels of a surface that is shown, at once.
    void repaintPixels(const QRegion& changed);

    /// All pixels that `figure` touches.
    [[nodiscard]] QRect extent(const OverlayFigure& figure);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] QRect windowPixels() const { return {QPoint(), m_frame.size()}; }
    void cutOutFigures();
    void paintFigures(QPainter& painter, const QRect& area);

    Kind m_kind;
    const std::vector<OverlayFigure>& m_figures;
    QRect m_frame;
    TranslucentFigures m_translucent;
    QRegion m_cutOut;
};

} // namespace tessarel::qt
