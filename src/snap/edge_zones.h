#pragma once

#include "model/zone.h"
#include "ports/rect.h"

#include <optional>

namespace tessarel {

/// The zone that a window gets when it is dragged with the pointer against an edge of the screen: a half, a
/// quarter at the corners, or all of it at the top. Empty away from the edges, and in the middle of the
/// bottom one, which offers nothing.
///
/// `axScreen` is the whole screen. The bands along its left and top edge are a point narrower than those
/// along the right and bottom one.
[[nodiscard]] std::optional<Zone> edgeZone(const Rect& axScreen, const Point& axPoint);

} // namespace tessarel
