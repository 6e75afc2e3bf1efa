#pragma once

#include "app/app_delegate.h"
#include "platform/macos/desktop.h"
#include "platform/macos/own_application.h"
#include "platform/qt/composed_overlay.h"
#include "platform/qt/qt_alerts.h"
#include "platform/qt/qt_main_queue.h"
#include "platform/qt/qt_own_application.h"
#include "platform/qt/qt_url_loading_module.h"
#include "platform/qt/system_wall_clock.h"

#include <functional>
#include <vector>

class QWidget;

namespace tessarel {

/// The whole program on a Mac: the back end, what Qt does beside it, and the delegate over both. Needs the
/// application object for all of its life; its end lets go of everything that has been claimed.
class MacProgram {
public:
    /// Answers the NSView that a widget, whose window has been made, stands for; null when there is none.
    using NativeView = std::function<void*(QWidget& widget)>;

    /// Has Qt never bring the program to the front by itself, neither when it starts nor when it raises a
    /// window. To be called before the application object is made.
    static void prepareToolkit();

    explicit MacProgram(NativeView nativeView);

    /// Call it once, and let the application's loop run unless another copy runs.
    [[nodiscard]] AppDelegate::Launch launch();

    [[nodiscard]] qt::QtMainQueue& mainQueue() { return m_queue; }

private:
    [[nodiscard]] Rect placeForQt(const Rect& screenFrame);
    [[nodiscard]] std::vector<void*> shownWindows() const;
    [[nodiscard]] Ports ports();

    NativeView m_nativeView;
    qt::QtMainQueue m_queue;
    macos::MacDesktop m_desktop;
    qt::QtAlerts m_alerts;
    qt::QtOwnApplication m_toolkit;
    macos::MacOwnApplication m_application;
    qt::ComposedOverlay m_overlay;
    qt::QtUrlLoadingModule m_urlLoading{{"../PlugIns"}};
    qt::SystemWallClock m_wallClock;
    AppDelegate m_delegate;
};

} // namespace tessarel
