// SPDX-License-Identifier: MIT

#include "icon.h"

#include <QColor>
#include <QLatin1String>
#include <QLinearGradient>
#include <QPainter>
#include <QRectF>
#include <QString>
#include <QStringList>

#include <array>

namespace tessarel {

namespace {

/// A rounded rectangle with a vertical gradient.
struct Shape {
    QRectF frame;
    double radius = 0;
    QColor top;
    QColor bottom;
};

/// Side of the square, in units, on which the icon is designed.
constexpr int kDesign = 1024;

constexpr double kTileRadius = 44;
constexpr QColor kWhite(0xfa, 0xfa, 0xfa);

/// The plate, which leaves about a tenth free on each side, and the three tiles.
constexpr std::array<Shape, 4> kShapes = {{
    {{100, 100, 824, 824}, 185, {0x2b, 0x3a, 0x55}, {0x14, 0x1b, 0x2a}},
    {{230, 262, 262, 500}, kTileRadius, {0x3b, 0xa0, 0xff}, {0x0a, 0x84, 0xff}},
    {{532, 262, 262, 230}, kTileRadius, kWhite, kWhite},
    {{532, 532, 262, 230}, kTileRadius, kWhite, kWhite},
}};

} // namespace

QImage drawIcon(int size) {
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.scale(size / double{kDesign}, size / double{kDesign});
    for (const Shape& shape : kShapes) {
        QLinearGradient gradient(shape.frame.topLeft(), shape.frame.bottomLeft());
        gradient.setColorAt(0, shape.top);
        gradient.setColorAt(1, shape.bottom);
        painter.setBrush(gradient);
        painter.drawRoundedRect(shape.frame, shape.radius, shape.radius);
    }
    return image;
}

QByteArray svgIcon() {
    QStringList lines{
        QStringLiteral(
            R"(<svg xmlns="http://www.w3.org/2000/svg" width="%1" height="%1" viewBox="0 0 %1 %1">)")
            .arg(kDesign)};
    int number = 0;
    for (const Shape& shape : kShapes) {
        const QString id = QStringLiteral("g%1").arg(number++);
        lines += QStringLiteral(R"(  <linearGradient id="%1" x2="0" y2="1"><stop stop-color="%2"/>)"
                                R"(<stop offset="1" stop-color="%3"/></linearGradient>)")
                     .arg(id, shape.top.name(), shape.bottom.name());
        lines += QStringLiteral(R"-(  <rect x="%1" y="%2" width="%3" height="%4" rx="%5" fill="url(#%6)"/>)-")
                     .arg(shape.frame.x())
                     .arg(shape.frame.y())
                     .arg(shape.frame.width())
                     .arg(shape.frame.height())
                     .arg(shape.radius)
                     .arg(id);
    }
    lines += QStringLiteral("</svg>\n");
    return lines.join(QLatin1Char('\n')).toUtf8();
}

} // namespace tessarel
