#pragma once

#include "engine/geo.h"
#include "ports/displays_port.h"
#include "ports/overlay_port.h"
#include "snap/overlay_item.h"
#include "snap/overlay_view.h"

#include <memory>
#include <optional>
#include <vector>

namespace tessarel {

/// Shows zones on top of one screen at a time, in a window that is made when first needed and then kept.
class OverlayController {
public:
    OverlayController(OverlayPort& port, const Geo& geo);

    /// Makes the overlay cover `screen` and draw `items`; without items it is there and invisible. Costs next
    /// to nothing when all of this is so already.
    void show(const Screen& screen, std::vector<OverlayItem> items);

    /// Takes the overlay off the screen; the window is kept.
    void hide();

private:
    void setFrame(const Rect& screenFrame);
    void draw();

    OverlayPort& m_port;
    const Geo& m_geo;
    std::unique_ptr<OverlayWindow> m_window;
    std::optional<Rect> m_screenFrame; ///< what the window covers
    OverlayView m_view;
    std::vector<OverlayFigure> m_figures; ///< what the window shows
    bool m_isShown = false;
};

} // namespace tessarel
