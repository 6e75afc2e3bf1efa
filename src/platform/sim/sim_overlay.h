#pragma once

#include "ports/overlay_port.h"

#include <memory>
#include <vector>

namespace tessarel::sim {

/// The overlay of the simulated desktop, as a person would see it, and how often it was touched.
class SimOverlay : public OverlayPort {
public:
    [[nodiscard]] std::unique_ptr<OverlayWindow> createWindow() override;

    int windows = 0; ///< made so far
    bool isVisible = false;
    Rect screenFrame;                   ///< that the window covers
    std::vector<OverlayFigure> figures; ///< on the window
    std::vector<Rect> changed;          ///< by the last drawing
    int framesSet = 0;
    int drawings = 0;
    int ordersFront = 0;
    int ordersOut = 0;
};

} // namespace tessarel::sim
