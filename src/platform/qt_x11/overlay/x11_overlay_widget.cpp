#include "platform/qt_x11/overlay/x11_overlay_widget.h"

#include "platform/qt/overlay/overlay_pixels.h"
#include "platform/qt_x11/overlay/native_window.h"
#include "platform/qt_x11/overlay/outline_figures.h"

#include <QPaintEvent>
#include <QPainter>

namespace tessarel::qt {

namespace {

// BypassWindowManagerHint makes the window override-redirect: no frame, no entry in client lists, no focus.
// WindowTransparentForInput sets an empty input shape, so that clicks go to the window below.
constexpr Qt::WindowFlags kFlags = Qt::Window | Qt::FramelessWindowHint | Qt::WindowTransparentForInput |
                                   Qt::WindowStaysOnTopHint | Qt::WindowDoesNotAcceptFocus |
                                   Qt::BypassWindowManagerHint;

} // namespace

X11OverlayWidget::X11OverlayWidget(Kind kind, const std::vector<OverlayFigure>& figures)
    : QWidget(nullptr, kFlags), m_kind(kind), m_figures(figures) {
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_QuitOnClose, false);
    setAttribute(Qt::WA_OpaquePaintEvent, kind == Kind::Outlined);
    setAttribute(Qt::WA_NoSystemBackground);
    setAttribute(Qt::WA_TranslucentBackground, kind == Kind::Translucent);
    create(); // the functions in native_window.h need the X11 window before it is shown
    if (kind == Kind::Translucent)
        clearWhenShown(*this);
}

void X11OverlayWidget::cover(const QRect& frame) {
    m_frame = frame;
    coverPixels(*this, frame);
    if (isVisible())
        cutOutFigures();
}

void X11OverlayWidget::appear() {
    cutOutFigures();
    show();
    raise();
}

void X11OverlayWidget::repaintPixels(const QRegion& changed) {
    cutOutFigures();
    QRegion region;
    for (const QRect& part : changed& windowPixels())
        region += units(part, devicePixelRatioF());
    if (!region.isEmpty())
        repaint(region);
}

QRect X11OverlayWidget::extent(const OverlayFigure& figure) {
    if (m_kind == Kind::Translucent)
        return m_translucent.extent(figure, devicePixelRatioF());
    return OutlineFigures(windowPixels(), devicePixelRatioF()).extent(figure);
}

/// Sets the window's shape to the figures, where the desktop has no compositor. Sends no request when the
/// shape is the same as before.
void X11OverlayWidget::cutOutFigures() {
    if (m_kind == Kind::Translucent)
        return;
    const OutlineFigures outlines(windowPixels(), devicePixelRatioF());
    QRegion region;
    for (const OverlayFigure& figure : m_figures)
        region += outlines.region(figure);
    if (region == m_cutOut && !m_cutOut.isEmpty())
        return;
    m_cutOut = region;
    cutOut(*this, region);
}

void X11OverlayWidget::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    const double scale = devicePixelRatioF();
    painter.scale(1 / scale, 1 / scale);
    // Converted to pixels, neighbouring parts may overlap at a fractional scale factor. A QRegion merges
    // them, so that no translucent pixel is painted twice.
    QRegion areas;
    for (const QRect& part : event->region())
        areas += pixels(part, scale);
    for (const QRect& area : areas& windowPixels())
        paintFigures(painter, area);
}

/// Paints the figures that touch `area`. Qt has already cleared the area of a translucent window.
void X11OverlayWidget::paintFigures(QPainter& painter, const QRect& area) {
    const double scale = devicePixelRatioF();
    const OutlineFigures outlines(windowPixels(), scale);
    painter.setClipRect(area);
    QRegion painted;
    for (const OverlayFigure& figure : m_figures) {
        const QRect pixelsOfFigure = extent(figure);
        if (!pixelsOfFigure.intersects(area))
            continue;
        if (m_kind == Kind::Translucent)
            m_translucent.paint(painter, figure, scale, !painted.intersects(pixelsOfFigure));
        else
            outlines.paint(painter, figure);
        painted += pixelsOfFigure;
    }
}

} // namespace tessarel::qt
