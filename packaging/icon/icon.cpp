#include "icon.h"

#include <QColor>
#include <QLinearGradient>
#include <QPainter>
#include <QRectF>

namespace tessarel {

namespace {

/// Side of the square, in units, on which the icon is designed. The plate leaves about a tenth free on each
/// side.
constexpr double kDesign = 1024;
constexpr QRectF kPlate(100, 100, 824, 824);
constexpr double kPlateRadius = 185;
constexpr QRectF kMainTile(230, 262, 262, 500);
constexpr QRectF kUpperTile(532, 262, 262, 230);
constexpr QRectF kLowerTile(532, 532, 262, 230);
constexpr double kTileRadius = 44;

/// Fills a rounded rectangle with a vertical gradient.
void paint(QPainter& painter, const QRectF& shape, double radius, const QColor& top, const QColor& bottom) {
    QLinearGradient gradient(shape.topLeft(), shape.bottomLeft());
    gradient.setColorAt(0, top);
    gradient.setColorAt(1, bottom);
    painter.setBrush(gradient);
    painter.drawRoundedRect(shape, radius, radius);
}

} // namespace

QImage drawIcon(int size) {
    constexpr QColor kWhite(0xfa, 0xfa, 0xfa);
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.scale(size / kDesign, size / kDesign);
    paint(painter, kPlate, kPlateRadius, QColor(0x2b, 0x3a, 0x55), QColor(0x14, 0x1b, 0x2a));
    paint(painter, kMainTile, kTileRadius, QColor(0x3b, 0xa0, 0xff), QColor(0x0a, 0x84, 0xff));
    paint(painter, kUpperTile, kTileRadius, kWhite, kWhite);
    paint(painter, kLowerTile, kTileRadius, kWhite, kWhite);
    return image;
}

} // namespace tessarel
