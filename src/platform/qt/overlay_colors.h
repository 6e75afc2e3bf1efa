#pragma once

#include <QColor>

namespace tessarel::qt {

/// The accent colour: Qt tells none of the desktop's.
inline constexpr QRgb kAccent = qRgb(0x0a, 0x84, 0xff);

} // namespace tessarel::qt
