// SPDX-License-Identifier: MIT

#pragma once

#include "platform/qt/overlay/translucent_figures.h"
#include "platform/qt_x11/overlay/outline_figures.h"
#include "platform/qt_x11/overlay/palette_canvas.h"
#include "ports/desktop/overlay_port.h"

#include <QColor>
#include <QRect>
#include <QRegion>
#include <QWidget>

#include <memory>
#include <vector>

namespace tessarel::qt {

/// The override-redirect window in which the figures are painted. It is above all other windows, takes
/// neither mouse nor keyboard input and appears in no window list. All coordinates are in pixels, whatever
/// the scale factor.
class X11OverlayWidget : public QWidget {
public:
    /// The look of the overlay.
    enum class Kind {
        Translucent, ///< an ARGB window, for a desktop with a compositor
        Outlined     ///< opaque lines; the window is shaped like them
    };

    /// Creates the hidden window. `figures` must outlive the widget. After a change of `figures`, call
    /// `repaintPixels`.
    X11OverlayWidget(Kind kind, const std::vector<OverlayFigure>& figures, const QColor& accent);

    [[nodiscard]] Kind kind() const { return m_kind; }
    [[nodiscard]] const QColor& accent() const { return m_translucent.accent(); }

    /// Moves and resizes the window to `frame`, in pixels of the root window, y down.
    void cover(const QRect& frame);

    /// Shows the window with the current figures, in front of all other windows.
    void appear();

    /// Repaints the `changed` pixels of a visible window with the current figures, synchronously.
    void repaintPixels(const QRegion& changed);

    /// Returns a rectangle that contains the label of `figure`; empty without a text.
    [[nodiscard]] QRect labelExtent(const OverlayFigure& figure);

    /// Null where Qt cannot paint on the screen's windows.
    [[nodiscard]] QPaintEngine* paintEngine() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] QRect windowPixels() const { return {QPoint(), m_frame.size()}; }
    [[nodiscard]] OutlineFigures outlines() const;
    void cutOutFigures();
    void paintWithPalette(const QRegion& areas) const;
    void paintTranslucent(QPainter& painter, const QRect& area);
    void paintOutlines(QPainter& painter, const QRect& area) const;

    Kind m_kind;
    const std::vector<OverlayFigure>& m_figures;
    QRect m_frame; // in pixels of the root window
    TranslucentFigures m_translucent;
    std::unique_ptr<PaletteCanvas> m_canvas; // null where Qt can paint on the window
    QRegion m_cutOut;                        // the current shape, in pixels of the window
};

} // namespace tessarel::qt
