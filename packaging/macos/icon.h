#pragma once

#include <QImage>

namespace tessarel {

/// The program's icon, `size` pixels square: the three tiles of the status item on the plate that all icons
/// of a Mac stand on, one of them in the colour of the zone that is about to take a window.
[[nodiscard]] QImage drawIcon(int size);

} // namespace tessarel
