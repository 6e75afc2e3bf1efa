// SPDX-License-Identifier: MIT

#include "platform/qt/overlay/translucent_figures.h"

#include "platform/qt/overlay/overlay_pixels.h"
#include "platform/qt/overlay/overlay_text.h"
#include "qt_values/color.h"
#include "qt_values/text.h"

#include <QColor>
#include <QFontMetricsF>
#include <QPainterPath>
#include <QPen>
#include <QRectF>
#include <QRegion>
#include <QString>
#include <QtMath>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace tessarel::qt {

namespace {

/// Most labels in the cache: more than all zones have, plain and highlighted.
constexpr std::size_t kMostLabels = 64;

/// How far the halo reaches beyond the letters, in points.
constexpr double kHaloReach = 3;
/// Widths of three strokes on top of each other, in points: darkest at the letters, fading outwards.
constexpr std::array kHaloStrokes = {2.0, 4.0, 6.0};
constexpr double kHaloStrokeAlpha = 0.13; // 1 - (1 - 0.13)^3 = 0.35 at the letters

QColor gray(int level, double alpha) {
    return {level, level, level, qRound(alpha * 255)};
}

/// Paints the halo around `letters` and clears the pixels of the letters themselves.
void paintHalo(QPainter& painter, const QPainterPath& letters, double scale) {
    for (const double width : kHaloStrokes)
        painter.strokePath(letters, QPen(gray(0, kHaloStrokeAlpha), width * scale, Qt::SolidLine,
                                         Qt::RoundCap, Qt::RoundJoin));
    // Letters may be translucent, and the halo must not shine through them.
    painter.setCompositionMode(QPainter::CompositionMode_DestinationOut);
    painter.fillPath(letters, Qt::black);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
}

/// Returns an image of the label with a margin for its halo. The text is centred by its advance width and its
/// line height.
QImage drawLabel(const OverlayLabel& label, double scale) {
    const QFont font = labelFont(label, scale);
    const QFontMetricsF metrics(font);
    const QString text = toQString(label.text);
    const double width = metrics.horizontalAdvance(text);
    const double room = std::ceil(kHaloReach * scale);
    QImage image(qCeil(width + 2 * room), qCeil(metrics.height() + 2 * room),
                 QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);

    QPainterPath letters;
    letters.addText((image.width() - width) / 2, (image.height() - metrics.height()) / 2 + metrics.ascent(),
                    font, text);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    paintHalo(painter, letters, scale);
    painter.fillPath(letters, gray(255, label.alpha));
    return image;
}

/// Returns the rectangle of `image` when it is centred at `center`, moved to whole pixels.
QRect placed(const QImage& image, const Point& center) {
    const QPointF corner(center.x - image.width() / 2.0, center.y - image.height() / 2.0);
    return {corner.toPoint(), image.size()};
}

QRectF rectF(const Rect& rect) {
    return {rect.minX(), rect.minY(), rect.absWidth(), rect.absHeight()};
}

/// Returns the rows of the shape between its rounded corners. Empty unless shape and radius are whole pixels,
/// the corners fit, and the shape is less than 2^15 pixels high, so that `paintSide` can paint it.
QRect wholeRows(const OverlayFigure& figure) {
    constexpr int kLongest = 1 << 15;
    const QRect all = pixels(figure.shape);
    const int corner = qCeil(figure.cornerRadius);
    const bool isPlain = rectF(figure.shape) == QRectF(all) && figure.cornerRadius == corner;
    const bool hasRoom = all.width() > 2 * corner && all.height() > 2 * corner && all.height() < kLongest;
    return isPlain && hasRoom ? all.adjusted(0, corner, 0, -corner) : QRect();
}

void paintRounded(QPainter& painter, const OverlayFigure& figure) {
    painter.drawRoundedRect(rectF(figure.shape), figure.cornerRadius, figure.cornerRadius);
}

QPen linePen(const OverlayFigure& figure, const QColor& accent) {
    return {translucent(accent, figure.strokeAlpha), figure.strokeWidth, Qt::SolidLine, Qt::FlatCap};
}

/// Fills the shape: `rows` as a plain rectangle, which is several times faster than a path, the rest as a
/// path. If `onNothing` is true, the rectangle replaces the transparent pixels below it instead of blending.
void paintFill(QPainter& painter, const OverlayFigure& figure, const QColor& color, const QRect& rows,
               bool onNothing) {
    painter.save();
    if (onNothing)
        painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.fillRect(rows, color);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    painter.setClipRegion(QRegion(pixels(figure.shape)) - rows, Qt::IntersectClip);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    paintRounded(painter, figure);
    painter.restore();
}

/// Paints a vertical line as an image whose rows are copies of the first one. An antialiased fill of every
/// row would take as long as the fill of a whole zone.
void paintSide(QPainter& painter, double center, double width, const QRect& rows, const QColor& color) {
    const int left = qFloor(center - width / 2);
    QImage image(qCeil(center + width / 2) - left, rows.height(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter firstRow(&image);
    firstRow.setRenderHint(QPainter::Antialiasing);
    firstRow.fillRect(QRectF(center - width / 2 - left, 0, width, 1), color);
    firstRow.end();
    for (int y = 1; y < image.height(); ++y)
        std::copy_n(image.constScanLine(0), image.bytesPerLine(), image.scanLine(y));
    painter.drawImage(left, rows.top(), image);
}

void paintCorners(QPainter& painter, const OverlayFigure& figure, const QColor& accent) {
    constexpr int kQuarter = 90 * 16; // Qt's unit is 1/16 degree, anticlockwise from three o'clock
    const QRectF shape = rectF(figure.shape);
    QRectF circle(shape.topLeft(), QSizeF(2, 2) * figure.cornerRadius);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(linePen(figure, accent));
    painter.drawArc(circle, kQuarter, kQuarter);
    circle.moveRight(shape.right());
    painter.drawArc(circle, 0, kQuarter);
    circle.moveBottom(shape.bottom());
    painter.drawArc(circle, 3 * kQuarter, kQuarter);
    circle.moveLeft(shape.left());
    painter.drawArc(circle, 2 * kQuarter, kQuarter);
}

/// Strokes the shape as four arcs and four straight lines. They do not overlap, because a translucent stroke
/// would be darker there.
void paintLine(QPainter& painter, const OverlayFigure& figure, const QColor& accent, const QRect& rows) {
    const QRectF shape = rectF(figure.shape);
    const QColor color = translucent(accent, figure.strokeAlpha);
    const double width = figure.strokeWidth;
    paintCorners(painter, figure, accent);
    for (const double y : {shape.top(), shape.bottom()})
        painter.fillRect(QRectF(shape.left() + figure.cornerRadius, y - width / 2,
                                shape.width() - 2 * figure.cornerRadius, width),
                         color);
    for (const double x : {shape.left(), shape.right()})
        paintSide(painter, x, width, rows, color);
}

void paintRectangle(QPainter& painter, const OverlayFigure& figure, const QColor& accent, bool onNothing) {
    const QColor fill = translucent(accent, figure.fillAlpha);
    if (const QRect rows = wholeRows(figure); rows.isValid()) {
        paintFill(painter, figure, fill, rows, onNothing);
        paintLine(painter, figure, accent, rows);
        return;
    }
    painter.setBrush(fill);
    painter.setPen(linePen(figure, accent));
    paintRounded(painter, figure);
}

} // namespace

void TranslucentFigures::paint(QPainter& painter, const OverlayFigure& figure, double scale, bool onNothing) {
    paintShape(painter, figure, onNothing);
    paintLabel(painter, figure, scale);
}

void TranslucentFigures::paintAll(QPainter& painter, const std::vector<OverlayFigure>& figures,
                                  const QRegion& area, double scale, bool onNothing) {
    QRegion onTop;
    for (const OverlayFigure& figure : figures)
        onTop += figure.highlighted ? labelExtent(figure, scale) : QRect();
    QRegion painted;
    for (const OverlayFigure& figure : figures) {
        const QRect all = extent(figure, scale);
        if (!area.intersects(all))
            continue;
        paintShape(painter, figure, onNothing && !painted.intersects(all));
        if (!onTop.intersects(labelExtent(figure, scale)))
            paintLabel(painter, figure, scale);
        painted += all;
    }
    for (const OverlayFigure& figure : figures)
        if (figure.highlighted && area.intersects(labelExtent(figure, scale)))
            paintLabel(painter, figure, scale);
}

void TranslucentFigures::paintShape(QPainter& painter, const OverlayFigure& figure, bool onNothing) const {
    painter.setRenderHint(QPainter::Antialiasing);
    if (!figure.shape.isNull())
        paintRectangle(painter, figure, m_accent, onNothing);
}

void TranslucentFigures::paintLabel(QPainter& painter, const OverlayFigure& figure, double scale) {
    if (figure.label.text.empty())
        return;
    const QImage& image = labelImage(figure.label, scale);
    painter.drawImage(placed(image, figure.label.center), image);
}

QRect TranslucentFigures::extent(const OverlayFigure& figure, double scale) {
    return pixels(figure.bounds).united(labelExtent(figure, scale));
}

QRect TranslucentFigures::labelExtent(const OverlayFigure& figure, double scale) {
    if (figure.label.text.empty())
        return {};
    return placed(labelImage(figure.label, scale), figure.label.center);
}

const QImage& TranslucentFigures::labelImage(const OverlayLabel& label, double scale) {
    const LabelKey key(label.text, label.fontSize, label.fontWeight, label.alpha, scale);
    if (const auto known = m_labels.find(key); known != m_labels.end())
        return known->second;
    if (m_labels.size() >= kMostLabels)
        m_labels.clear();
    return m_labels.emplace(key, drawLabel(label, scale)).first->second;
}

} // namespace tessarel::qt
