// SPDX-License-Identifier: MIT

#include "program/mac_program.h"

#include "app/command_address.h"
#include "platform/macos/shell/accent_color.h"
#include "platform/macos/shell/overlay_properties.h"
#include "platform/qt/focus_editing.h"
#include "platform/qt/window_order.h"
#include "qt_values/color.h"
#include "settings_ui/settings_window_controller.h"

#include <QApplication>
#include <QColor>
#include <QWidget>

#include <cstdint>
#include <memory>
#include <utility>

namespace tessarel {

namespace {

/// Returns the user's accent colour, or the default colour if the system reports none.
QColor accent() {
    const auto color = macos::accentColor();
    if (!color)
        return {kAccent};
    return QColor::fromRgbF(static_cast<float>(color->red), static_cast<float>(color->green),
                            static_cast<float>(color->blue));
}

} // namespace

MacProgram::MacProgram(NativeView nativeView)
    : m_nativeView(std::move(nativeView)), m_desktop(m_queue, qt::editInFocus),
      m_alerts(
          {.shown = [this](QWidget& box) { macos::MacOwnApplication::bringToFront(m_nativeView(box)); }}),
      m_application(m_toolkit, [this] { return shownWindows(); }),
      m_overlay(m_queue,
                {.place = [this](const Rect& screenFrame) { return placeForQt(screenFrame); },
                 .prepare = [this](QWidget& window) { macos::becomeOverlay(m_nativeView(window)); },
                 .orderFront = [this](QWidget& window) { macos::orderOverlayFront(m_nativeView(window)); },
                 .accent = accent}),
      m_delegate(ports(), [](Services& services, const Ports& all) {
          return std::make_unique<SettingsWindowController>(services, all);
      }) {}

void MacProgram::prepareToolkit() {
    // Otherwise Qt makes the program an ordinary one at startup and activates it.
    qputenv("QT_MAC_DISABLE_FOREGROUND_APPLICATION_TRANSFORM", "1");
    // Otherwise Qt activates the program whenever it raises a window, and the dragged program loses the
    // focus.
    qputenv("QT_MAC_SET_RAISE_PROCESS", "0");
}

AppDelegate::Launch MacProgram::launch() {
    // After Qt's startup, which may set another activation policy.
    macos::MacOwnApplication::becomeAccessory();
    const AppDelegate::Launch launch = m_delegate.applicationDidFinishLaunching();
    if (launch == AppDelegate::Launch::Running)
        receiveCommands();
    return launch;
}

void MacProgram::receiveCommands() {
    m_commands.emplace([this](const std::vector<std::string>& words) {
        CommandReply reply = m_delegate.runCommand(words);
        return CommandAnswer{static_cast<std::uint8_t>(reply.exit), std::move(reply.text)};
    });
    m_addresses.emplace([this](const std::string& address) {
        if (const auto words = commandInAddress(address))
            (void)m_delegate.runCommand(*words);
    });
}

/// Converts screen coordinates to Qt's. Both are in points, but Qt's origin is the top-left corner of the
/// primary display, y down.
Rect MacProgram::placeForQt(const Rect& screenFrame) {
    const auto screens = m_desktop.displays.screens();
    const double primaryHeight = screens.empty() ? 0 : screens.front().frame.absHeight();
    return {screenFrame.minX(), primaryHeight - screenFrame.maxY(), screenFrame.absWidth(),
            screenFrame.absHeight()};
}

/// Returns the views of the visible windows that can have the keyboard focus, which excludes the overlay.
/// The last one becomes the key window.
std::vector<void*> MacProgram::shownWindows() const {
    QWidgetList windows = QApplication::topLevelWidgets();
    windows.removeIf([](const QWidget* window) {
        return !window->isVisible() || window->windowFlags().testFlag(Qt::WindowDoesNotAcceptFocus);
    });
    qt::sortForRaising(windows);
    std::vector<void*> views;
    for (QWidget* const window : windows)
        views.push_back(m_nativeView(*window));
    return views;
}

Ports MacProgram::ports() {
    return {.accessibility = m_desktop.accessibility,
            .alertSound = m_desktop.alertSound,
            .alerts = m_alerts,
            .application = m_application,
            .displays = m_desktop.displays,
            .hotKeys = m_desktop.hotKeys,
            .keyNames = m_desktop.keyNames,
            .localKeys = m_desktop.localKeys,
            .loginItem = m_desktop.loginItem,
            .mainMenu = m_desktop.mainMenu,
            .mainQueue = m_queue,
            .mouse = m_desktop.mouse,
            .openPanel = m_desktop.openPanel,
            .openUrl = m_desktop.openUrl,
            .overlay = m_overlay,
            .preferences = m_desktop.preferences,
            .singleInstance = m_desktop.singleInstance,
            .statusItem = m_desktop.statusItem,
            .trust = m_desktop.trust,
            .urlLoading = m_urlLoading,
            .wallClock = m_wallClock,
            .windowList = m_desktop.windowList,
            .workspace = m_desktop.workspace,
            .words = m_desktop.words};
}

} // namespace tessarel
