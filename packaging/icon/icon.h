// SPDX-License-Identifier: MIT

#pragma once

#include <QByteArray>
#include <QImage>

namespace tessarel {

/// Draws the program's icon, `size` pixels square: the three tiles of the status item on the rounded plate of
/// macOS icons. The largest tile has the colour of a highlighted zone.
[[nodiscard]] QImage drawIcon(int size);

/// Returns the same icon as an SVG document.
[[nodiscard]] QByteArray svgIcon();

} // namespace tessarel
