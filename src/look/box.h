// SPDX-License-Identifier: MIT

#pragma once

#include <QColor>
#include <QRectF>

class QPainter;

namespace tessarel {

/// Corners of buttons, fields and boxes, in device-independent pixels.
inline constexpr double kCornerRadius = 4;
/// The widths of outlines and of the ring that shows the keyboard focus, in device-independent pixels.
inline constexpr double kOutlineWidth = 1;
inline constexpr double kFocusWidth = 2;

/// How a box is painted. An invalid colour paints nothing.
struct BoxLook {
    QColor fill = {};
    QColor line = {};
    double lineWidth = kOutlineWidth; ///< rounded to whole device pixels, at least one
    double radius = kCornerRadius;
};

/// Paints a box whose line lies inside `frame`. All straight edges coincide with device pixels, so they are
/// sharp at any scale. The painter keeps its state.
void paintBox(QPainter& painter, const QRectF& frame, const BoxLook& look);

} // namespace tessarel
