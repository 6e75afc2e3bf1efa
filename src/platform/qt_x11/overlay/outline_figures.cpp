// SPDX-License-Identifier: MIT

#include "platform/qt_x11/overlay/outline_figures.h"

#include "look/contrast.h"
#include "platform/qt/overlay/overlay_pixels.h"
#include "platform/qt/overlay/overlay_text.h"
#include "qt_values/color.h"
#include "qt_values/text.h"

#include <QColor>
#include <QString>

#include <algorithm>

namespace tessarel::qt {

namespace {

// In multiples of the thinnest line.
constexpr int kEdge = 1;
constexpr int kPlainRing = kEdge + 2;
constexpr int kHighlightedRing = kEdge + 6;
constexpr int kHatchStep = 6;
constexpr int kBadge = 44;

constexpr QRgb kDark = qRgb(0x2b, 0x34, 0x45);

QRect inset(const QRect& rect, int by) {
    return rect.adjusted(by, by, -by, -by);
}

/// Returns the pixels of `rect` outside `hole`. `hole` may be invalid (of negative size) and then counts as
/// empty.
QRegion frame(const QRect& rect, const QRect& hole) {
    return QRegion(rect) - QRegion(hole.isValid() ? hole : QRect());
}

void fill(QPainter& painter, const QRegion& region, const QColor& color) {
    for (const QRect& part : region)
        painter.fillRect(part, color);
}

} // namespace

std::array<QColor, 3> OutlineFigures::colors(const QColor& accent) {
    return {QColor(Qt::white), accent, QColor(kDark)};
}

OutlineFigures::OutlineFigures(const QRect& window, double scale, const QColor& accent)
    : m_window(window), m_scale(scale), m_accent(accent), m_line(std::max(1, qRound(scale))) {}

int OutlineFigures::ringWidth(const OverlayFigure& figure) const {
    return m_line * (figure.highlighted ? kHighlightedRing : kPlainRing);
}

QRegion OutlineFigures::ring(const OverlayFigure& figure) const {
    const QRect shape = pixels(figure.shape);
    return frame(shape, inset(shape, ringWidth(figure)));
}

QRegion OutlineFigures::hatch(const OverlayFigure& figure) const {
    QRegion lines;
    if (!figure.highlighted)
        return lines;
    const QRect inside = inset(pixels(figure.shape), ringWidth(figure));
    const QRect seen = inside & m_window;
    const int step = m_line * kHatchStep;
    // Lines above the window are skipped in whole steps, so that the visible ones do not shift.
    const int skipped = std::max(0, seen.top() - inside.top()) / step * step;
    for (int y = inside.top() + skipped + step - m_line; y <= seen.bottom(); y += step)
        lines += QRect(seen.left(), y, seen.width(), m_line) & seen;
    return lines;
}

QRect OutlineFigures::badge(const OverlayFigure& figure) const {
    if (figure.label.text.empty())
        return {};
    const QString text = toQString(figure.label.text);
    const int height = kBadge * m_line;
    const int needed = QFontMetrics(labelFont(figure.label, m_scale)).horizontalAdvance(text) + height / 3;
    QRect rect(0, 0, std::max(height, needed), height);
    rect.moveTo(qRound(figure.label.center.x - rect.width() / 2.0),
                qRound(figure.label.center.y - rect.height() / 2.0));
    return rect;
}

QRegion OutlineFigures::region(const OverlayFigure& figure) const {
    return (ring(figure) + hatch(figure) + badge(figure)) & m_window;
}

QRect OutlineFigures::extent(const OverlayFigure& figure) const {
    return pixels(figure.shape).united(badge(figure)) & m_window;
}

/// Returns whether a line of the hatch is white instead of the accent colour. Alternates from line to line.
bool OutlineFigures::isWhite(const QRect& line, const QRect& shape) const {
    return (line.top() - shape.top()) / (m_line * kHatchStep) % 2 != 0;
}

void OutlineFigures::paint(QPainter& painter, const OverlayFigure& figure) const {
    // A shaped window has no translucent pixels, so edges must not be smoothed.
    painter.setRenderHint(QPainter::Antialiasing, false);
    const QRect shape = pixels(figure.shape);
    fill(painter, ring(figure), m_accent);
    fill(painter, frame(shape, inset(shape, m_line * kEdge)), Qt::white);
    for (const QRect& line : hatch(figure))
        painter.fillRect(line, isWhite(line, shape) ? QColor(Qt::white) : m_accent);
    paintLabel(painter, figure);
}

void OutlineFigures::paintLabel(QPainter& painter, const OverlayFigure& figure) const {
    if (figure.label.text.empty())
        return;
    const QRect rect = badge(figure);
    painter.fillRect(rect, Qt::white);
    painter.fillRect(inset(rect, m_line), figure.highlighted ? m_accent : QColor(kDark));
    painter.setPen(figure.highlighted ? readableOn(m_accent) : QColor(Qt::white));
    painter.setFont(labelFont(figure.label, m_scale));
    painter.drawText(rect, Qt::AlignCenter, toQString(figure.label.text));
}

} // namespace tessarel::qt
