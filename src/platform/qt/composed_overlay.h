#pragma once

#include "ports/main_queue_port.h"
#include "ports/overlay_port.h"

#include <QColor>

#include <chrono>
#include <functional>
#include <memory>

class QWidget;

namespace tessarel::qt {

/// Overlay windows of Qt's for a system on which every window may be translucent and which counts in the same
/// units as Qt does, however many pixels a display has for each. Needs the application object from the first
/// time that a window is shown.
///
/// The memory of what was shown is given back some time after a window has gone out.
class ComposedOverlay : public OverlayPort {
public:
    /// What the system knows and Qt does not.
    struct System {
        /// Where a rectangle in screen coordinates is for Qt, y down.
        std::function<Rect(const Rect& screenFrame)> place;
        /// Gives a window, which has been made and not been shown, what Qt cannot give it.
        std::function<void(QWidget& window)> prepare;
        /// Puts a window that Qt has just shown, or shows already, in front of all others. Qt's own `raise`
        /// is not used: on some systems it brings the whole program to the front.
        std::function<void(QWidget& window)> orderFront;
        /// The colour for zones, asked for whenever a window is shown.
        std::function<QColor()> accent;
    };

    static constexpr MainQueuePort::Duration kQuietTime = std::chrono::seconds(30);

    /// `queue` and all that the functions use outlive the overlay and its windows.
    ComposedOverlay(MainQueuePort& queue, System system);

    [[nodiscard]] std::unique_ptr<OverlayWindow> createWindow() override;

private:
    class Window;

    MainQueuePort& m_queue;
    System m_system;
};

} // namespace tessarel::qt
