// SPDX-License-Identifier: MIT

#include "look/box.h"

#include "look/pixel_grid.h"

#include <QPainter>
#include <QPen>

#include <algorithm>

namespace tessarel {

void paintBox(QPainter& painter, const QRectF& frame, const BoxLook& look) {
    const PixelGrid grid(painter.deviceTransform());
    const double width = look.line.isValid() ? grid.wholeWidth(look.lineWidth) : 0;
    const QRectF line = grid.inside(frame).adjusted(width / 2, width / 2, -width / 2, -width / 2);
    const double radius = std::max(0.0, look.radius - width / 2);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(look.line.isValid() ? QPen(look.line, width, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin)
                                       : QPen(Qt::NoPen));
    painter.setBrush(look.fill.isValid() ? QBrush(look.fill) : QBrush(Qt::NoBrush));
    if (radius > 0)
        painter.drawRoundedRect(line, radius, radius);
    else
        painter.drawRect(line);
    painter.restore();
}

} // namespace tessarel
