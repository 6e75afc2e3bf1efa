// SPDX-License-Identifier: MIT

#pragma once

#include "ports/desktop/overlay_port.h"
#include "ports/desktop/rect.h"
#include "snap/overlay_item.h"

#include <vector>

namespace tessarel {

/// Turns items into figures: the appearance of zones, without any state.
struct OverlayView {
    /// Top-left corner of the screen, in accessibility coordinates.
    Point origin;
    std::vector<OverlayItem> items;

    /// Returns the figures for the items, in the same order. Nothing is clamped to the screen. Items whose
    /// rectangle is not finite are left out, because they cannot be painted.
    [[nodiscard]] std::vector<OverlayFigure> draw() const;
};

} // namespace tessarel
