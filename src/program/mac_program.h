// SPDX-License-Identifier: MIT

#pragma once

#include "app/app_delegate.h"
#include "platform/macos/desktop.h"
#include "platform/macos/shell/command_channel.h"
#include "platform/macos/shell/own_application.h"
#include "platform/qt/overlay/composed_overlay.h"
#include "platform/qt/qt_alerts.h"
#include "platform/qt/qt_main_queue.h"
#include "platform/qt/qt_own_application.h"
#include "platform/qt/requested_addresses.h"
#include "platform/qt/system_wall_clock.h"
#include "platform/qt_web/process/qt_url_loading_process.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

class QWidget;

namespace tessarel {

/// The whole program on macOS: the back end, the parts that Qt provides, and the application delegate.
///
/// Requires the application object during its whole life. The destructor releases everything that the program
/// has registered.
class MacProgram {
public:
    /// Returns the NSView of a widget whose native window exists; null if there is none.
    using NativeView = std::function<void*(QWidget& widget)>;

    /// Configures Qt so that it never brings the program to the front by itself, neither at startup nor when
    /// it raises a window. Call before creating the application object.
    static void prepareToolkit();

    explicit MacProgram(NativeView nativeView);

    /// Runs the launch sequence. Call once; then run the application's event loop unless another copy is
    /// running.
    [[nodiscard]] AppDelegate::Launch launch();

    /// Returns the queue by which all parts of the program schedule work.
    [[nodiscard]] qt::QtMainQueue& mainQueue() { return m_queue; }

private:
    [[nodiscard]] Rect placeForQt(const Rect& screenFrame);
    [[nodiscard]] std::vector<void*> shownWindows() const;
    [[nodiscard]] Ports ports();
    void receiveCommands();

    NativeView m_nativeView;
    qt::QtMainQueue m_queue;
    macos::MacDesktop m_desktop;
    qt::QtAlerts m_alerts;
    /// The program as Qt sees it, which owns the event loop.
    qt::QtOwnApplication m_toolkit;
    macos::MacOwnApplication m_application;
    qt::ComposedOverlay m_overlay;
    /// The bundle has the helper beside the executable.
    qt::QtUrlLoadingProcess m_urlLoading{{"."}};
    qt::SystemWallClock m_wallClock;
    // Uses all of the above, so it must be destroyed before them.
    AppDelegate m_delegate;
    // Both are empty until the program runs, and use the delegate.
    std::optional<macos::MacCommandChannel> m_commands;
    std::optional<qt::RequestedAddresses> m_addresses;
};

} // namespace tessarel
