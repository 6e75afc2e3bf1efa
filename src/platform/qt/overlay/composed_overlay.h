// SPDX-License-Identifier: MIT

#pragma once

#include "ports/desktop/overlay_port.h"
#include "ports/main_queue_port.h"

#include <QColor>

#include <chrono>
#include <functional>
#include <memory>

class QWidget;

namespace tessarel::qt {

/// Overlay windows made with Qt, for systems that compose all windows and whose desktop has the same units as
/// Qt, whatever the pixel density of a display.
///
/// A window may be created before the `QApplication` but not shown before it. Some time after a window has
/// been hidden, the memory of its surface is freed.
class ComposedOverlay : public OverlayPort {
public:
    /// Functions of the system that Qt does not offer.
    struct System {
        /// Converts a rectangle from screen coordinates (y up) to Qt's, whose origin is the top-left corner
        /// of the primary display, y down.
        std::function<Rect(const Rect& screenFrame)> place;
        /// Sets native properties of a window that has been created but not shown.
        std::function<void(QWidget& window)> prepare;
        /// Moves a visible window in front of all others. `QWidget::raise()` is not used, because on some
        /// systems it brings the whole program to the front.
        std::function<void(QWidget& window)> orderFront;
        /// Returns the accent colour. Called each time a hidden window is shown.
        std::function<QColor()> accent;
    };

    /// How long a hidden window keeps its surface.
    static constexpr MainQueuePort::Duration kQuietTime = std::chrono::seconds(30);

    /// `queue`, and everything that the functions of `system` refer to, must outlive the overlay and its
    /// windows.
    ComposedOverlay(MainQueuePort& queue, System system);

    [[nodiscard]] std::unique_ptr<OverlayWindow> createWindow() override;

    [[nodiscard]] bool showsOutlines() const override { return false; }

private:
    class Window;

    MainQueuePort& m_queue;
    System m_system;
};

} // namespace tessarel::qt
