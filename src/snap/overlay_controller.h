// SPDX-License-Identifier: MIT

#pragma once

#include "engine/screens.h"
#include "ports/desktop/displays_port.h"
#include "ports/desktop/overlay_port.h"
#include "snap/overlay_item.h"
#include "snap/overlay_view.h"

#include <memory>
#include <vector>

namespace tessarel {

/// Shows zones on one screen at a time, in a window that is created on first use and then kept.
class OverlayController {
public:
    /// `port` must outlive this object.
    explicit OverlayController(OverlayPort& port);

    /// Makes the overlay cover `screen`, one of `screens`, and draw `items`; without items it is visible but
    /// empty. Called at every mouse movement: does nothing if nothing has changed.
    void show(const Screens& screens, const Screen& screen, std::vector<OverlayItem> items);

    /// Hides the overlay. Keeps its window.
    void hide();

private:
    /// Sends the window the figures and the areas that have changed.
    void draw();

    OverlayPort& m_port;
    /// Null before the first use.
    std::unique_ptr<OverlayWindow> m_window;
    /// Frame of the window when it was last shown, in screen coordinates.
    Rect m_screenFrame;
    OverlayView m_view;
    /// Figures that the window shows.
    std::vector<OverlayFigure> m_figures;
    bool m_isShown = false;
};

} // namespace tessarel
