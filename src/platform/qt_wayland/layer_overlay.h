// SPDX-License-Identifier: MIT

#pragma once

#include "platform/qt/qt_main_queue.h"
#include "ports/desktop/overlay_port.h"

#include <QColor>

#include <functional>
#include <memory>

namespace tessarel::qt {

/// Overlay windows as surfaces of the layer shell. A window covers the display at the top-left corner of its
/// frame.
class LayerOverlay : public OverlayPort {
public:
    /// What the desktop knows.
    struct System {
        /// Converts a rectangle from screen coordinates (y up) to the compositor's (y down).
        std::function<Rect(const Rect& screenFrame)> place;
        /// Returns the accent colour. Called each time a hidden window is shown.
        std::function<QColor()> accent;
    };

    /// `queue`, and everything that the functions of `system` use, must outlive the overlay and its windows.
    LayerOverlay(QtMainQueue& queue, System system) : m_queue(queue), m_system(std::move(system)) {}

    /// Connects to the compositor, which takes the application object.
    [[nodiscard]] std::unique_ptr<OverlayWindow> createWindow() override;

    [[nodiscard]] bool showsOutlines() const override { return false; }

private:
    class Window;

    QtMainQueue& m_queue;
    System m_system;
};

} // namespace tessarel::qt
