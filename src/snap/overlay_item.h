// SPDX-License-Identifier: MIT

#pragma once

#include "ports/desktop/rect.h"

#include <string>

namespace tessarel {

/// A rectangle to draw on the overlay.
struct OverlayItem {
    /// In accessibility coordinates.
    Rect rect;
    /// Whether the drag would snap to this rectangle.
    bool highlighted = false;
    /// Text in the middle; may be empty.
    std::string label;

    bool operator==(const OverlayItem&) const = default;
};

} // namespace tessarel
