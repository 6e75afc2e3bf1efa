// SPDX-License-Identifier: MIT

#include "platform/qt_x11/overlay/x11_overlay_widget.h"

#include "platform/qt/overlay/overlay_pixels.h"
#include "platform/qt_x11/overlay/native_window.h"

#include <QPaintEvent>
#include <QPainter>

#include <cmath>

namespace tessarel::qt {

namespace {

// BypassWindowManagerHint makes the window override-redirect: no frame, no entry in client lists, no focus.
// WindowTransparentForInput sets an empty input shape, so that clicks go to the window below.
constexpr Qt::WindowFlags kFlags = Qt::Window | Qt::FramelessWindowHint | Qt::WindowTransparentForInput |
                                   Qt::WindowStaysOnTopHint | Qt::WindowDoesNotAcceptFocus |
                                   Qt::BypassWindowManagerHint;

/// Scales the lines and the corners of `figure`, and their distance from its bounds, which stay as they are.
OverlayFigure magnified(OverlayFigure figure, double scale) {
    const double inset = std::ceil((figure.shape.minX() - figure.bounds.minX()) * scale);
    figure.shape = figure.shape.isNull() ? figure.shape : figure.bounds.inset(inset, inset);
    figure.cornerRadius = std::round(figure.cornerRadius * scale); // whole pixels are painted faster
    figure.strokeWidth *= scale;
    return figure;
}

} // namespace

X11OverlayWidget::X11OverlayWidget(Kind kind, const std::vector<OverlayFigure>& figures, const QColor& accent)
    : QWidget(nullptr, kFlags), m_kind(kind), m_figures(figures), m_translucent(accent) {
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_QuitOnClose, false);
    setAttribute(Qt::WA_OpaquePaintEvent, kind == Kind::Outlined);
    setAttribute(Qt::WA_NoSystemBackground);
    setAttribute(Qt::WA_TranslucentBackground, kind == Kind::Translucent);
    if (PaletteCanvas::isNeeded()) {
        m_canvas = std::make_unique<PaletteCanvas>(accent);
        setAttribute(Qt::WA_PaintOnScreen);
    }
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

QRect X11OverlayWidget::labelExtent(const OverlayFigure& figure) {
    if (m_kind == Kind::Translucent)
        return m_translucent.labelExtent(figure, devicePixelRatioF());
    return outlines().badge(figure);
}

OutlineFigures X11OverlayWidget::outlines() const {
    return {windowPixels(), devicePixelRatioF(), accent()};
}

/// Sets the window's shape to the figures, where the desktop has no compositor. Sends no request when the
/// shape is the same as before.
void X11OverlayWidget::cutOutFigures() {
    if (m_kind == Kind::Translucent)
        return;
    const OutlineFigures figures = outlines();
    QRegion region;
    for (const OverlayFigure& figure : m_figures)
        region += figures.region(figure);
    if (region == m_cutOut && !m_cutOut.isEmpty())
        return;
    m_cutOut = region;
    cutOut(*this, region);
}

void X11OverlayWidget::paintEvent(QPaintEvent* event) {
    const double scale = devicePixelRatioF();
    // Converted to pixels, neighbouring parts may overlap at a fractional scale factor. A QRegion merges
    // them, so that no translucent pixel is painted twice.
    QRegion areas;
    for (const QRect& part : event->region())
        areas += pixels(part, scale);
    if (m_canvas) {
        paintWithPalette(areas & windowPixels());
        return;
    }
    QPainter painter(this);
    painter.scale(1 / scale, 1 / scale);
    for (const QRect& area : areas& windowPixels()) {
        painter.setClipRect(area);
        m_kind == Kind::Translucent ? paintTranslucent(painter, area) : paintOutlines(painter, area);
    }
}

QPaintEngine* X11OverlayWidget::paintEngine() const {
    return m_canvas ? nullptr : QWidget::paintEngine();
}

/// Paints the outlines into images and copies these to the window.
void X11OverlayWidget::paintWithPalette(const QRegion& areas) const {
    for (const QRect& area : areas) {
        QImage image(area.size(), QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        painter.translate(-area.topLeft());
        paintOutlines(painter, area);
        painter.end();
        m_canvas->put(*this, image, area.topLeft());
    }
}

/// Paints the figures that touch `area`, which Qt has already cleared.
void X11OverlayWidget::paintTranslucent(QPainter& painter, const QRect& area) {
    const double scale = devicePixelRatioF();
    std::vector<OverlayFigure> figures;
    for (const OverlayFigure& figure : m_figures)
        figures.push_back(magnified(figure, scale));
    m_translucent.paintAll(painter, figures, area, scale, true);
}

/// Paints the figures that touch `area`, and the labels of highlighted ones again, on top of the others.
void X11OverlayWidget::paintOutlines(QPainter& painter, const QRect& area) const {
    const OutlineFigures figures = outlines();
    for (const OverlayFigure& figure : m_figures)
        if (figures.extent(figure).intersects(area))
            figures.paint(painter, figure);
    for (const OverlayFigure& figure : m_figures)
        if (figure.highlighted)
            figures.paintLabel(painter, figure);
}

} // namespace tessarel::qt
