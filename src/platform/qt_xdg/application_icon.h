// SPDX-License-Identifier: MIT

#pragma once

#include <QIcon>

namespace tessarel::qt {

/// Returns the icon of the program's windows: the zones of the status item's symbol, on a tile. It is drawn
/// at runtime in sizes from 16 to 128 pixels, so that no icon theme is needed.
[[nodiscard]] QIcon applicationIcon();

} // namespace tessarel::qt
