#include "platform/qt_x11/overlay/x11_overlay_window.h"

#include "platform/qt/overlay_pixels.h"

#include <utility>

namespace tessarel::qt {

X11OverlayWindow::X11OverlayWindow(MainQueuePort& queue, Conversion desktopPixels)
    : m_queue(queue), m_desktopPixels(std::move(desktopPixels)),
      m_self(std::make_shared<X11OverlayWindow*>(this)) {}

X11OverlayWindow::~X11OverlayWindow() {
    *m_self = nullptr;
}

void X11OverlayWindow::setFrame(const Rect& screenFrame) {
    m_frame = pixels(m_desktopPixels(screenFrame));
    if (!m_isFront)
        return;
    m_surface->cover(m_frame);
    m_nextRepaint = m_queue.now(); // the picture of another screen must not stay
}

void X11OverlayWindow::setFigures(const std::vector<OverlayFigure>& figures,
                                  const std::vector<Rect>& changed) {
    if (!m_isFront) {
        m_figures = figures; // all of it is painted when the window comes to the front
        return;
    }
    m_changed += extents(changed); // what was there
    m_figures = figures;
    m_changed += extents(changed);
    if (!m_changed.isEmpty())
        scheduleRepaint();
}

void X11OverlayWindow::orderFront() {
    if (m_isFront) {
        m_surface->raise();
        return;
    }
    m_isFront = true;
    useSurface(fittingKind());
}

void X11OverlayWindow::orderOut() {
    if (!m_isFront)
        return;
    m_isFront = false;
    m_changed = {};
    m_surface->hide();
    m_quietSince = m_queue.now();
    if (!m_releaseScheduled)
        scheduleRelease(kQuietTime);
}

X11OverlayWidget::Kind X11OverlayWindow::fittingKind() {
    if (!m_compositor)
        m_compositor = std::make_unique<CompositorWatch>([this] { onCompositorGone(); });
    return m_compositor->isRunning() ? X11OverlayWidget::Kind::Translucent : X11OverlayWidget::Kind::Outlined;
}

void X11OverlayWindow::useSurface(X11OverlayWidget::Kind kind) {
    if (!m_surface || m_surface->kind() != kind)
        m_surface = std::make_unique<X11OverlayWidget>(kind, m_figures);
    m_surface->cover(m_frame);
    m_surface->appear();
    m_nextRepaint = m_queue.now();
}

/// Without one a translucent window would hide the whole desktop.
void X11OverlayWindow::onCompositorGone() {
    if (m_isFront)
        useSurface(fittingKind());
}

/// The pixels of `areas`, and of labels that reach out of the figures there.
QRegion X11OverlayWindow::extents(const std::vector<Rect>& areas) {
    QRegion region;
    for (const Rect& area : areas)
        region += pixels(area);
    QRegion labels;
    for (const OverlayFigure& figure : m_figures) {
        const QRect bounds = pixels(figure.bounds);
        const QRect extent = m_surface->extent(figure);
        if (region.intersects(bounds) && !bounds.contains(extent))
            labels += extent;
    }
    return region + labels;
}

void X11OverlayWindow::scheduleRepaint() {
    if (m_repaintScheduled)
        return;
    if (const auto wait = m_nextRepaint - m_queue.now(); wait > MainQueuePort::Duration::zero()) {
        m_repaintScheduled = true;
        later(wait, &X11OverlayWindow::repaint);
        return;
    }
    repaint();
}

void X11OverlayWindow::repaint() {
    m_repaintScheduled = false;
    if (!m_isFront)
        return;
    m_surface->repaintPixels(std::exchange(m_changed, {}));
    m_nextRepaint = m_queue.now() + kRepaintInterval;
}

void X11OverlayWindow::scheduleRelease(MainQueuePort::Duration delay) {
    m_releaseScheduled = true;
    later(delay, &X11OverlayWindow::releaseIfQuiet);
}

void X11OverlayWindow::releaseIfQuiet() {
    m_releaseScheduled = false;
    if (m_isFront)
        return;
    if (const auto left = m_quietSince + kQuietTime - m_queue.now(); left > MainQueuePort::Duration::zero()) {
        scheduleRelease(left);
        return;
    }
    m_surface.reset();
    m_compositor.reset();
}

void X11OverlayWindow::later(MainQueuePort::Duration delay, void (X11OverlayWindow::*work)()) {
    m_queue.asyncAfter(delay, [self = m_self, work] {
        if (*self)
            (*self->*work)();
    });
}

} // namespace tessarel::qt
