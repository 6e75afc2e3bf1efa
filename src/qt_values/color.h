// SPDX-License-Identifier: MIT

#pragma once

#include <QColor>

namespace tessarel {

/// The accent colour where the desktop's own cannot be read. White text is readable on it, and it stands out
/// from light and from dark windows.
inline constexpr QRgb kAccent = qRgb(0x0a, 0x72, 0xe3);

/// Returns `color` with the given opacity, from 0 (transparent) to 1 (opaque).
[[nodiscard]] inline QColor translucent(QColor color, double opacity) {
    color.setAlphaF(static_cast<float>(opacity));
    return color;
}

} // namespace tessarel
