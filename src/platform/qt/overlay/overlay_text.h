// SPDX-License-Identifier: MIT

#pragma once

#include "ports/desktop/overlay_port.h"

#include <QFont>

namespace tessarel::qt {

/// Returns the system font in the size and weight of `label`, at `scale` pixels per point and at least one
/// pixel high.
[[nodiscard]] QFont labelFont(const OverlayLabel& label, double scale);

} // namespace tessarel::qt
