#pragma once

#include "ports/overlay_port.h"

#include <QFont>

namespace tessarel::qt {

/// The system's font for `label`, at `scale` pixels per point.
[[nodiscard]] QFont labelFont(const OverlayLabel& label, double scale);

} // namespace tessarel::qt
