#pragma once

#include "ports/rect.h"

#include <QRect>

namespace tessarel::qt {

/// The whole pixels that `rect` touches. Edges beyond any desktop are cut off there; null has no pixels.
[[nodiscard]] QRect pixels(const Rect& rect);

/// The pixels of a rectangle of Qt's, all of them at least in part inside, at `scale` pixels per unit.
[[nodiscard]] QRect pixels(const QRect& rect, double scale);

/// The units of Qt's that cover `pixels` at `scale` pixels per unit.
[[nodiscard]] QRect units(const QRect& pixels, double scale);

} // namespace tessarel::qt
