// SPDX-License-Identifier: MIT

#pragma once

#include "model/zone.h"
#include "ports/desktop/rect.h"

#include <optional>

namespace tessarel {

/// Returns the zone for a window that is dragged with the pointer to an edge of the screen: a half at the
/// left and right edges, the whole area at the top, a quarter near the corners. Empty away from the edges and
/// in the middle of the bottom edge.
///
/// `axScreen` is the whole area of the screen, in accessibility coordinates like `axPoint`. The bands along
/// the left and top edges are 6 units wide, those along the right and bottom edges 7.
[[nodiscard]] std::optional<Zone> edgeZone(const Rect& axScreen, const Point& axPoint);

} // namespace tessarel
