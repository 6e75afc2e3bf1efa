// SPDX-License-Identifier: MIT

#include "platform/qt_x11/overlay/x11_overlay_window.h"

#include "platform/qt/overlay/overlay_pixels.h"

#include <utility>

namespace tessarel::qt {

X11OverlayWindow::X11OverlayWindow(MainQueuePort& queue, Conversion desktopPixels, Accent accent)
    : m_queue(queue), m_desktopPixels(std::move(desktopPixels)), m_accent(std::move(accent)) {}

X11OverlayWindow::~X11OverlayWindow() = default;

void X11OverlayWindow::setFrame(const Rect& screenFrame) {
    m_frame = pixels(m_desktopPixels(screenFrame));
    if (!m_isFront)
        return;
    m_surface->cover(m_frame);
    m_nextRepaint = m_queue.now(); // no delay: the window still shows the previous screen's zones
}

void X11OverlayWindow::setFigures(const std::vector<OverlayFigure>& figures,
                                  const std::vector<Rect>& changed) {
    if (!m_isFront) {
        m_figures = figures; // everything is painted when the window is shown
        return;
    }
    m_changed += extents(changed); // with the old figures
    m_figures = figures;
    m_changed += extents(changed); // with the new figures
    if (!m_changed.isEmpty())
        scheduleRepaint();
}

void X11OverlayWindow::orderFront() {
    if (m_isFront) {
        m_surface->raise();
        return;
    }
    m_isFront = true;
    m_scheduledRelease.reset();
    useSurface(fittingKind());
}

void X11OverlayWindow::orderOut() {
    if (!m_isFront)
        return;
    m_isFront = false;
    m_stacking.reset();
    m_scheduledRaise.reset();
    m_changed = {};
    m_surface->hide();
    m_scheduledRelease = m_queue.asyncAfter(kQuietTime, [this] {
        m_surface.reset();
        m_compositor.reset();
    });
}

/// Returns the look that the desktop supports now.
X11OverlayWidget::Kind X11OverlayWindow::fittingKind() {
    if (PaletteCanvas::isNeeded())
        return X11OverlayWidget::Kind::Outlined;
    if (!m_compositor)
        m_compositor = std::make_unique<CompositorWatch>([this] { onCompositorGone(); });
    return m_compositor->isRunning() ? X11OverlayWidget::Kind::Translucent : X11OverlayWidget::Kind::Outlined;
}

/// Shows a widget of that kind in the present accent colour. Reuses the existing widget if it fits; the
/// visual of an X11 window cannot change.
void X11OverlayWindow::useSurface(X11OverlayWidget::Kind kind) {
    const QColor accent = m_accent();
    if (!m_surface || m_surface->kind() != kind || m_surface->accent() != accent)
        m_surface = std::make_unique<X11OverlayWidget>(kind, m_figures, accent);
    m_surface->cover(m_frame);
    m_stacking.reset(); // restores the events of the root window before they are read again
    m_stacking = std::make_unique<StackingWatch>(static_cast<std::uint32_t>(m_surface->winId()),
                                                 [this] { stayInFront(); });
    m_surface->appear();
    m_nextRepaint = m_queue.now();
}

/// Raises the window after the events that have arrived together.
void X11OverlayWindow::stayInFront() {
    if (!m_scheduledRaise)
        m_scheduledRaise = m_queue.asyncAfter({}, [this] { raiseAgain(); });
}

void X11OverlayWindow::raiseAgain() {
    m_scheduledRaise.reset();
    const auto now = m_queue.now();
    if (now - m_raisesBegan >= kRaiseInterval) {
        m_raisesBegan = now;
        m_raises = 0;
    }
    if (++m_raises <= kMostRaises)
        m_surface->raise();
}

/// Switches to the outlined look. Without a compositor, a translucent window is opaque and would hide the
/// desktop.
void X11OverlayWindow::onCompositorGone() {
    if (m_isFront)
        useSurface(fittingKind());
}

/// Returns the pixels of `areas`, plus those of labels that touch them: labels may reach beyond their
/// figures, and may be left out because of another one.
QRegion X11OverlayWindow::extents(const std::vector<Rect>& areas) {
    QRegion region;
    for (const Rect& area : areas)
        region += pixels(area);
    std::vector<QRect> labels;
    for (const OverlayFigure& figure : m_figures)
        labels.push_back(m_surface->labelExtent(figure));
    return withLabels(region, labels);
}

/// Repaints at once or, if the last repaint was less than `kRepaintInterval` ago, at the end of that
/// interval.
void X11OverlayWindow::scheduleRepaint() {
    if (m_scheduledRepaint)
        return;
    if (const auto wait = m_nextRepaint - m_queue.now(); wait > MainQueuePort::Duration::zero()) {
        m_scheduledRepaint = m_queue.asyncAfter(wait, [this] { repaint(); });
        return;
    }
    repaint();
}

void X11OverlayWindow::repaint() {
    m_scheduledRepaint.reset();
    if (!m_isFront)
        return;
    m_surface->repaintPixels(std::exchange(m_changed, {}));
    m_nextRepaint = m_queue.now() + kRepaintInterval;
}

} // namespace tessarel::qt
