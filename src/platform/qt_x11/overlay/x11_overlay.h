#pragma once

#include "ports/main_queue_port.h"
#include "ports/overlay_port.h"

#include <functional>
#include <memory>

namespace tessarel::qt {

/// Overlay windows of Qt's on X11, in pixels. Needs the application object from the first time that a window
/// is shown.
class X11Overlay : public OverlayPort {
public:
    /// Answers the pixels of the desktop, y down, that a rectangle in screen coordinates covers.
    using Conversion = std::function<Rect(const Rect& screenFrame)>;

    /// `queue` and all that `desktopPixels` uses outlive the overlay and its windows.
    X11Overlay(MainQueuePort& queue, Conversion desktopPixels);

    [[nodiscard]] std::unique_ptr<OverlayWindow> createWindow() override;

private:
    MainQueuePort& m_queue;
    Conversion m_desktopPixels;
};

} // namespace tessarel::qt
