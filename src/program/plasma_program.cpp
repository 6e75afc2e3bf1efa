// SPDX-License-Identifier: MIT

#include "program/plasma_program.h"

#include "app/app_delegate.h"
#include "model/call_on_end.h"
#include "model/key_names.h"
#include "platform/plasma/plasma_desktop.h"
#include "platform/plasma/session.h"
#include "platform/posix/failed_writes.h"
#include "platform/posix/termination_signals.h"
#include "platform/qt/qt_alerts.h"
#include "platform/qt/qt_main_queue.h"
#include "platform/qt/qt_messages.h"
#include "platform/qt/qt_open_panel.h"
#include "platform/qt/qt_open_url.h"
#include "platform/qt/qt_own_application.h"
#include "platform/qt/system_wall_clock.h"
#include "platform/qt_wayland/layer_overlay.h"
#include "platform/qt_web/process/qt_url_loading_process.h"
#include "platform/qt_x11/qt_local_keys.h"
#include "platform/qt_x11/tray/qt_status_item.h"
#include "platform/qt_xdg/application_panel.h"
#include "platform/qt_xdg/qt_appearance.h"
#include "platform/qt_xdg/session_bus.h"
#include "platform/x11/input/key_lookup.h"
#include "platform/xdg/environment.h"
#include "platform/xdg/home_folder.h"
#include "program/qt_program.h"
#include "settings_ui/settings_window_controller.h"

#include <QApplication>

#include <algorithm>
#include <array>
#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <unistd.h>
#include <utility>

namespace tessarel {

namespace {

/// The alert sound as Qt plays it, which on Wayland may be no sound.
class QtBeep : public AlertSoundPort {
public:
    void beep() override { QApplication::beep(); }
};

/// A main menu that is not shown: Plasma's menu bars belong to windows.
class NoMainMenu : public MainMenuPort {
public:
    void setMainMenu(const std::vector<MainMenu>&) override {}
};

/// The names of keys, whatever the keyboard layout.
class FixedKeyNames : public KeyNamesPort {
public:
    [[nodiscard]] std::string name(std::int64_t keyCode) override { return KeyNames::name(keyCode); }
    [[nodiscard]] SubscriptionPtr onChange(std::function<void()>) override {
        return callOnEnd([] {});
    }
};

/// Returns the user's folder for files of the session. KWin runs what is in it, so it is never a folder that
/// other users can write to.
std::filesystem::path runtimeFolder() {
    const auto folder = xdg::folderFrom("XDG_RUNTIME_DIR");
    return folder.empty() ? std::filesystem::path("/run/user") / std::to_string(::getuid()) : folder;
}

/// Runs Qt's event loop until the program is asked to quit. Returns the exit code. Destroys the delegate
/// before the application object, because the delegate's windows need Qt.
int runLoop(const char* programName, qt::QtMainQueue& queue, qt::TerminationSignals& terminationSignals,
            wayland::BusLink& link, qt::SessionBus& bus, std::optional<AppDelegate>& delegate) {
    std::array<std::string, 5> options{programName, "-platform", "wayland;xcb", "-platformtheme", "generic"};
    // Ends with a null pointer, like the arguments of `main`.
    std::array<char*, 6> arguments{};
    std::ranges::transform(options, arguments.begin(), [](std::string& option) { return option.data(); });
    int argumentCount = options.size();

    // Without the colours and fonts that Qt would take from the desktop: `QtAppearance` sets the palette.
    QApplication::setDesktopSettingsAware(false);
    describeProgramToQt();
    const QApplication application(argumentCount, arguments.data());
    useControlStyle();
    bus.start();
    // QApplication has set the user's locale, whose decimal point may have several bytes; see `readJson`.
    std::setlocale(LC_NUMERIC, "C");
    const auto messages = queue.onReadable(link.fileDescriptor(), [&link] { link.dispatch(); });
    const auto termination = terminationSignals.onReceived(queue, [] { QApplication::exit(EXIT_SUCCESS); });
    const int exitCode = QCoreApplication::exec(); // see SessionBus::start
    delegate.reset();
    return exitCode;
}

} // namespace

std::optional<int> runOnPlasma(const char* programName) {
    if (!plasma::mayBeWayland(std::getenv("WAYLAND_DISPLAY"), std::getenv("XDG_SESSION_TYPE")))
        return std::nullopt;
    wayland::BusLink link(wayland::sessionBusAddress());
    if (!plasma::hasCompositor(link))
        return std::nullopt;

    xdg::settleHome();
    posix::surviveFailedWrites();
    qt::TerminationSignals terminationSignals;
    qt::QtMainQueue queue;
    qt::SessionBus bus(queue);
    qt::installMessageHandler([] {}, [] { return false; });
    qt::QtAppearance appearance([&bus] { return bus.connection(); });
    const auto busChanges = bus.onChanged([&appearance] { appearance.busChanged(); });
    const auto beforeWindow = [&bus, &appearance] {
        bus.beforeWindow();
        appearance.apply();
    };
    qt::QtAlerts alerts({.beforeMaking = beforeWindow});
    qt::QtOpenUrl openUrl;
    plasma::PlasmaDesktop desktop(
        link, queue, runtimeFolder(),
        [&queue](int fd, std::function<void()> readable) {
            return queue.onReadable(fd, std::move(readable));
        },
        say);
    QtBeep alertSound;
    NoMainMenu mainMenu;
    FixedKeyNames keyNames;
    qt::QtLocalKeys localKeys(x11::keyDown, [](std::uint32_t) { return false; });
    const auto entryFolders = xdg::InstalledApplications::folders();
    qt::QtOpenPanel entryFiles(entryFolders, [&desktop](const std::filesystem::path& file) {
        return desktop.applications.identifierOfEntry(file);
    });
    qt::ApplicationPanel openPanel(
        {.folders = entryFolders,
         .desktops = xdg::currentDesktops(),
         .running = [&desktop] { return desktop.applications.identifiersInUse(); }},
        entryFiles);
    qt::QtOwnApplication application;
    qt::LayerOverlay overlay(
        queue, {.place = [&desktop](const Rect& screenFrame) { return desktop.compositorFrame(screenFrame); },
                .accent = [&appearance] { return appearance.accent(); }});
    qt::QtStatusItem statusItem(queue, bus, [&appearance] { appearance.apply(); });
    qt::QtUrlLoadingProcess urlLoading;
    qt::SystemWallClock wallClock;
    // Optional, so that `runLoop` can destroy it before the application object.
    std::optional<AppDelegate> delegate;
    delegate.emplace(Ports{.accessibility = desktop.accessibility,
                           .alertSound = alertSound,
                           .alerts = alerts,
                           .application = application,
                           .displays = desktop.displays,
                           .hotKeys = desktop.hotKeys,
                           .keyNames = keyNames,
                           .localKeys = localKeys,
                           .loginItem = desktop.loginItem,
                           .mainMenu = mainMenu,
                           .mainQueue = queue,
                           .mouse = desktop.mouse,
                           .openPanel = openPanel,
                           .openUrl = openUrl,
                           .overlay = overlay,
                           .preferences = desktop.preferences,
                           .singleInstance = desktop.singleInstance,
                           .statusItem = statusItem,
                           .trust = desktop.trust,
                           .urlLoading = urlLoading,
                           .wallClock = wallClock,
                           .windowList = desktop.windowList,
                           .workspace = desktop.workspace,
                           .words = desktop.words},
                     [&beforeWindow](Services& services, const Ports& ports) {
                         beforeWindow();
                         return std::make_unique<SettingsWindowController>(services, ports);
                     });
    switch (delegate->applicationDidFinishLaunching()) {
    case AppDelegate::Launch::Running:
        break;
    case AppDelegate::Launch::AnotherCopyRuns:
        return EXIT_SUCCESS;
    case AppDelegate::Launch::Failed:
        say(delegate->launchFailure());
        return EXIT_FAILURE;
    }
    return runLoop(programName, queue, terminationSignals, link, bus, delegate);
}

} // namespace tessarel
