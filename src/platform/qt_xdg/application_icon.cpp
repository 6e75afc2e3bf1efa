// SPDX-License-Identifier: MIT

#include "platform/qt_xdg/application_icon.h"

#include <QColor>
#include <QPainter>
#include <QPixmap>
#include <QRect>
#include <QRectF>

#include <algorithm>
#include <array>

namespace tessarel::qt {

namespace {

constexpr std::array kSizes = {16, 24, 32, 48, 64, 128}; // pixels
constexpr QColor kTile(0x0a, 0x60, 0xc8);
constexpr QColor kZone(0xfa, 0xfa, 0xfa);
constexpr double kCornerShare = 0.2; // radius of a corner, as a share of the icon's size

/// Returns the zones that the icon shows: the left half and the two quarters on the right. Their edges lie on
/// whole pixels, so that they are not blurred.
std::array<QRect, 3> zones(int size) {
    const int margin = std::max(3, size * 3 / 16);
    const int gap = std::max(1, size / 16);
    const int whole = size - 2 * margin;
    const int half = (whole - gap) / 2;
    const int right = margin + whole - half;
    const int lower = right;
    return {QRect(margin, margin, half, whole), QRect(right, margin, half, half),
            QRect(right, lower, half, half)};
}

QPixmap drawn(int size) {
    QPixmap icon(size, size);
    icon.fill(Qt::transparent);
    QPainter painter(&icon);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(kTile);
    painter.drawRoundedRect(QRectF(0, 0, size, size), kCornerShare * size, kCornerShare * size);
    for (const QRect& zone : zones(size))
        painter.fillRect(zone, kZone);
    return icon;
}

} // namespace

QIcon applicationIcon() {
    QIcon icon;
    for (const int size : kSizes)
        icon.addPixmap(drawn(size));
    return icon;
}

} // namespace tessarel::qt
