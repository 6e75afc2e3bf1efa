#pragma once

#include "ports/rect.h"

#include <string>

namespace tessarel {

/// One rectangle to draw on the overlay.
struct OverlayItem {
    Rect rect;                ///< in accessibility coordinates
    bool highlighted = false; ///< the zone that the drag would snap to
    std::string label;        ///< in the middle of the rectangle; empty: none

    bool operator==(const OverlayItem&) const = default;
};

} // namespace tessarel
