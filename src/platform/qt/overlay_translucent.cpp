#include "platform/qt/overlay_translucent.h"

#include "platform/qt/overlay_colors.h"
#include "platform/qt/overlay_pixels.h"
#include "platform/qt/overlay_text.h"

#include <QColor>
#include <QFontMetricsF>
#include <QPainterPath>
#include <QPen>
#include <QRectF>
#include <QString>

#include <array>
#include <cmath>
#include <cstddef>

namespace tessarel::qt {

namespace {

/// More than all zones have labels, plain and highlighted.
constexpr std::size_t kMostLabels = 64;

constexpr double kHaloReach = 3;
/// Three strokes over each other: dark at the letters, fading away from them.
constexpr std::array kHaloStrokes = {2.0, 4.0, 6.0};
constexpr double kHaloStrokeAlpha = 0.13; // 1 - (1 - 0.13)^3 = 0.35 at the letters

QColor accent(double alpha) {
    QColor color(kAccent);
    color.setAlphaF(static_cast<float>(alpha));
    return color;
}

QColor gray(int level, double alpha) {
    return {level, level, level, qRound(alpha * 255)};
}

void paintHalo(QPainter& painter, const QPainterPath& letters, double scale) {
    for (const double width : kHaloStrokes)
        painter.strokePath(letters, QPen(gray(0, kHaloStrokeAlpha), width * scale, Qt::SolidLine,
                                         Qt::RoundCap, Qt::RoundJoin));
    // The letters themselves keep the colour that they would have without it.
    painter.setCompositionMode(QPainter::CompositionMode_DestinationOut);
    painter.fillPath(letters, Qt::black);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
}

/// The text in the middle of an image, as measured, with room for the halo around it.
QImage drawLabel(const OverlayLabel& label, double scale) {
    const QFont font = labelFont(label, scale);
    const QFontMetricsF metrics(font);
    const QString text = QString::fromStdString(label.text);
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

QRect placed(const QImage& image, const Point& center) {
    const QPointF corner(center.x - image.width() / 2.0, center.y - image.height() / 2.0);
    return {corner.toPoint(), image.size()};
}

void paintShape(QPainter& painter, const OverlayFigure& figure) {
    const Rect& shape = figure.shape;
    painter.setBrush(accent(figure.fillAlpha));
    painter.setPen(QPen(accent(figure.strokeAlpha), figure.strokeWidth));
    painter.drawRoundedRect(QRectF(shape.minX(), shape.minY(), shape.absWidth(), shape.absHeight()),
                            figure.cornerRadius, figure.cornerRadius);
}

} // namespace

void TranslucentFigures::paint(QPainter& painter, const OverlayFigure& figure, double scale) {
    painter.setRenderHint(QPainter::Antialiasing);
    if (!figure.shape.isNull())
        paintShape(painter, figure);
    if (figure.label.text.empty())
        return;
    const QImage& image = labelImage(figure.label, scale);
    painter.drawImage(placed(image, figure.label.center), image);
}

QRect TranslucentFigures::extent(const OverlayFigure& figure, double scale) {
    const QRect shape = pixels(figure.bounds);
    if (figure.label.text.empty())
        return shape;
    return shape.united(placed(labelImage(figure.label, scale), figure.label.center));
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
