// SPDX-License-Identifier: MIT

#include "platform/qt/overlay/composed_overlay_widget.h"

#include "platform/qt/overlay/overlay_pixels.h"

#include <QPaintEvent>
#include <QPainter>

namespace tessarel::qt {

namespace {

constexpr Qt::WindowFlags kFlags = Qt::Window | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint |
                                   Qt::WindowTransparentForInput | Qt::WindowStaysOnTopHint |
                                   Qt::WindowDoesNotAcceptFocus;

Rect magnified(const Rect& rect, double scale) {
    if (rect.isNull())
        return rect;
    return {rect.x * scale, rect.y * scale, rect.width * scale, rect.height * scale};
}

/// Converts `figure` from Qt's units to pixels. The font size stays in points, because `TranslucentFigures`
/// scales it when it paints.
OverlayFigure magnified(OverlayFigure figure, double scale) {
    figure.bounds = magnified(figure.bounds, scale);
    figure.shape = magnified(figure.shape, scale);
    figure.cornerRadius *= scale;
    figure.strokeWidth *= scale;
    figure.label.center = {figure.label.center.x * scale, figure.label.center.y * scale};
    return figure;
}

} // namespace

ComposedOverlayWidget::ComposedOverlayWidget() : QWidget(nullptr, kFlags) {
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_QuitOnClose, false);
    setAttribute(Qt::WA_NoSystemBackground);
    setAttribute(Qt::WA_TranslucentBackground);
    create();
}

void ComposedOverlayWidget::setAccent(const QColor& accent) {
    if (accent == m_painted.accent())
        return;
    m_painted = TranslucentFigures(accent);
    update();
}

void ComposedOverlayWidget::setFigures(const std::vector<OverlayFigure>& figures,
                                       const std::vector<Rect>& changed) {
    // Labels may reach beyond `changed`, in their old state as well as in the new one.
    QRegion region = extents(changed);
    m_figures = figures;
    region += extents(changed);
    update(region);
}

void ComposedOverlayWidget::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    const double scale = devicePixelRatioF();
    // Paint in pixels, so that lines and letters are as sharp as the display allows.
    painter.scale(1 / scale, 1 / scale);
    std::vector<OverlayFigure> figures;
    for (const OverlayFigure& figure : m_figures)
        figures.push_back(magnified(figure, scale));
    QRegion area;
    for (const QRect& part : event->region())
        area += pixels(part, scale);
    m_painted.paintAll(painter, figures, area, scale, false);
}

/// Returns the area of the label of `figure`, in whole units of Qt's.
QRect ComposedOverlayWidget::labelExtent(const OverlayFigure& figure) {
    const double scale = devicePixelRatioF();
    return units(m_painted.labelExtent(magnified(figure, scale), scale), scale);
}

/// Returns `areas` in whole units of Qt's, with the labels that touch them. Labels may reach beyond their
/// figures, and may be left out because of another one.
QRegion ComposedOverlayWidget::extents(const std::vector<Rect>& areas) {
    QRegion region;
    for (const Rect& area : areas)
        region += pixels(area);
    std::vector<QRect> labels;
    for (const OverlayFigure& figure : m_figures)
        labels.push_back(labelExtent(figure));
    return withLabels(region, labels);
}

} // namespace tessarel::qt
