#pragma once

#include "ports/overlay_port.h"
#include "ports/rect.h"
#include "snap/overlay_item.h"

#include <vector>

namespace tessarel {

/// The picture on the overlay: how items look, and nothing about when.
struct OverlayView {
    Point origin; ///< top-left corner of the shown screen, in accessibility coordinates
    std::vector<OverlayItem> items;

    /// What is painted for the items, in their order. Nothing is clamped to the screen; an item whose
    /// rectangle is not finite cannot be painted and is left out.
    [[nodiscard]] std::vector<OverlayFigure> draw() const;
};

} // namespace tessarel
