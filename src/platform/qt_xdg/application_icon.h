#pragma once

#include <QIcon>

namespace tessarel::qt {

/// The icon of the program's windows, drawn here so that no icon theme is needed: the zones of the panel's
/// symbol, on a tile of their own. It holds sizes from 16 to 128 pixels.
[[nodiscard]] QIcon applicationIcon();

} // namespace tessarel::qt
