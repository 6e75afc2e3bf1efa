// SPDX-License-Identifier: MIT

#pragma once

#include "ports/desktop/overlay_port.h"

#include <memory>
#include <vector>

namespace tessarel::sim {

/// The overlay of the simulated desktop. Records what a user would see of the last window, and counts the
/// calls. The port must outlive its windows.
class SimOverlay : public OverlayPort {
public:
    [[nodiscard]] std::unique_ptr<OverlayWindow> createWindow() override;
    [[nodiscard]] bool showsOutlines() const override { return outlined; }

    bool outlined = false;
    int windows = 0; ///< number of windows created so far
    bool isVisible = false;
    /// In screen coordinates: bottom-left origin, y up.
    Rect screenFrame;
    /// In local coordinates: top-left origin, y down.
    std::vector<OverlayFigure> figures;
    std::vector<Rect> changed; ///< the argument of the last `setFigures`
    int framesSet = 0;         ///< calls of `setFrame`
    int drawings = 0;          ///< calls of `setFigures`
    int ordersFront = 0;       ///< calls of `orderFront`
    int ordersOut = 0;         ///< calls of `orderOut`
};

} // namespace tessarel::sim
