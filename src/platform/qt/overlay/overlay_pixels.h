// SPDX-License-Identifier: MIT

#pragma once

#include "ports/desktop/rect.h"

#include <QRect>
#include <QRegion>

#include <vector>

namespace tessarel::qt {

/// Returns the smallest rectangle of whole pixels that covers `rect`; empty for the null rectangle. Edges are
/// limited to +-2^20, far outside any desktop.
[[nodiscard]] QRect pixels(const Rect& rect);

/// Converts a rectangle from Qt's units to pixels, rounding outwards. `scale` is the number of pixels per
/// unit.
[[nodiscard]] QRect pixels(const QRect& rect, double scale);

/// Converts a rectangle from pixels to Qt's units, rounding outwards. `scale` is the number of pixels per
/// unit.
[[nodiscard]] QRect units(const QRect& pixels, double scale);

/// Returns `region` and every one of `labels` that touches it, or that touches such a label.
[[nodiscard]] QRegion withLabels(QRegion region, const std::vector<QRect>& labels);

} // namespace tessarel::qt
