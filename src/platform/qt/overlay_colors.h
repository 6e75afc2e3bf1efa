#pragma once

#include <QColor>

namespace tessarel::qt {

/// The accent colour where the desktop's own cannot be read.
inline constexpr QRgb kAccent = qRgb(0x0a, 0x84, 0xff);

} // namespace tessarel::qt
