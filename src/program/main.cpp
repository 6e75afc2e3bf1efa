// SPDX-License-Identifier: MIT

#include "app/app_delegate.h"
#include "platform/posix/failed_writes.h"
#include "platform/posix/termination_signals.h"
#include "platform/qt/qt_alerts.h"
#include "platform/qt/qt_main_queue.h"
#include "platform/qt/qt_messages.h"
#include "platform/qt/qt_open_panel.h"
#include "platform/qt/qt_open_url.h"
#include "platform/qt/system_wall_clock.h"
#include "platform/qt_web/process/qt_url_loading_process.h"
#include "platform/qt_x11/display_loss_guard.h"
#include "platform/qt_x11/overlay/x11_overlay.h"
#include "platform/qt_x11/pointer_crossings.h"
#include "platform/qt_x11/qt_local_keys.h"
#include "platform/qt_x11/qt_x11_application.h"
#include "platform/qt_x11/tray/qt_status_item.h"
#include "platform/qt_x11/work_area_notices.h"
#include "platform/qt_xdg/application_panel.h"
#include "platform/qt_xdg/qt_appearance.h"
#include "platform/qt_xdg/session_bus.h"
#include "platform/x11/input/key_lookup.h"
#include "platform/x11/server/command_channel.h"
#include "platform/x11/server/command_sender.h"
#include "platform/x11/server/connection.h"
#include "platform/x11/windows/bring_to_user.h"
#include "platform/x11/x11_desktop.h"
#include "platform/xdg/environment.h"
#include "platform/xdg/home_folder.h"
#include "program/command_line.h"
#include "program/plasma_program.h"
#include "program/qt_program.h"
#include "program/report.h"
#include "settings_ui/settings_window_controller.h"

#include <QApplication>

#include <algorithm>
#include <array>
#include <clocale>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tessarel {

namespace {

/// Exits at once. The server has already released everything that was registered, and Qt cannot shut down in
/// order without its connection.
[[noreturn]] void endWithoutDisplay() {
    say("lost the connection to the X display");
    std::_Exit(EXIT_FAILURE);
}

/// Runs Qt's event loop on `connection` until the program is asked to quit or the display is lost. Returns
/// the exit code. Destroys the delegate before the application object, because the delegate's windows need
/// Qt.
int runLoop(const char* programName, qt::QtMainQueue& queue, qt::TerminationSignals& terminationSignals,
            x11::Connection& connection, qt::SessionBus& bus, std::optional<AppDelegate>& delegate) {
    // Fixed, whatever the session suggests or the user passes: overlay, hot keys and placement need X11.
    std::array<std::string, 5> options{programName, "-platform", "xcb", "-platformtheme", "generic"};
    // Ends with a null pointer, like the arguments of `main`.
    std::array<char*, 6> arguments{};
    std::ranges::transform(options, arguments.begin(), [](std::string& option) { return option.data(); });
    int argumentCount = options.size();

    // Without the colours and fonts that Qt would take from the desktop: `QtAppearance` sets the palette.
    QApplication::setDesktopSettingsAware(false);
    describeProgramToQt();
    std::optional<qt::DisplayLossGuard> guard(std::in_place, connection.fileDescriptor(), endWithoutDisplay);
    const QApplication application(argumentCount, arguments.data());
    useControlStyle();
    guard.reset();
    bus.start();
    // QApplication has set the user's locale, whose decimal point may have several bytes; see `readJson`.
    std::setlocale(LC_NUMERIC, "C");
    qt::ignorePointerCrossings();
    const qt::WorkAreaNotices workAreaNotices(queue);

    const auto events =
        queue.onReadable(connection.fileDescriptor(), [&connection] { connection.dispatch(); });
    const auto loss = connection.onLost(endWithoutDisplay);
    const auto termination = terminationSignals.onReceived(queue, [] { QApplication::exit(EXIT_SUCCESS); });
    const int exitCode = QCoreApplication::exec(); // see SessionBus::start
    delegate.reset();
    return exitCode;
}

/// Builds the program and runs it. Registers with the desktop first and starts Qt, which takes longer,
/// afterwards: hot keys pressed meanwhile wait on the connection until the event loop runs.
int run(const char* programName) {
    xdg::settleHome();
    posix::surviveFailedWrites();
    qt::TerminationSignals terminationSignals;
    qt::QtMainQueue queue;
    qt::SessionBus bus(queue);
    const auto [connection, failure] = x11::Connection::open(nullptr, queue);
    if (!connection) {
        const bool isWayland = std::getenv("WAYLAND_DISPLAY") != nullptr;
        say("cannot open the X display: " + failure +
            (isWayland ? " Log in to an X11 session or to KDE Plasma." : ""));
        return EXIT_FAILURE;
    }
    qt::installMessageHandler(endWithoutDisplay, [descriptor = connection->fileDescriptor()] {
        return qt::isDisplayLost(descriptor);
    });

    const x11::Session session =
        x11::sessionOf(*connection, std::getenv("WAYLAND_DISPLAY"), std::getenv("XDG_SESSION_TYPE"));
    qt::QtAppearance appearance([&bus] { return bus.connection(); });
    const auto busChanges = bus.onChanged([&appearance] { appearance.busChanged(); });
    const auto beforeWindow = [&bus, &appearance] {
        bus.beforeWindow();
        appearance.apply();
    };
    qt::QtAlerts alerts({.beforeMaking = beforeWindow});
    qt::QtOpenUrl openUrl;
    x11::X11Desktop desktop(
        *connection, session, queue, alerts,
        [&queue](int fd, std::function<void()> readable) {
            return queue.onReadable(fd, std::move(readable));
        },
        say);
    qt::QtLocalKeys localKeys(
        x11::keyDown, [&link = *connection](std::uint32_t keycode) { return x11::isKeyHeld(link, keycode); });
    const auto entryFolders = xdg::InstalledApplications::folders();
    qt::QtOpenPanel entryFiles(entryFolders, [&desktop](const std::filesystem::path& file) {
        return desktop.applications.identifierOfEntry(file);
    });
    qt::ApplicationPanel openPanel(
        {.folders = entryFolders,
         .desktops = xdg::currentDesktops(),
         .running = [&desktop] { return desktop.applications.identifiersInUse(); }},
        entryFiles);
    qt::QtX11Application application(
        [&link = *connection](xcb_window_t window) { x11::bringToUser(link, window); },
        [&link = *connection](xcb_window_t window) { x11::bringAlong(link, window); });
    qt::X11Overlay overlay(
        queue, [&desktop](const Rect& screenFrame) { return desktop.rootPixels(screenFrame); },
        [&appearance] { return appearance.accent(); });
    qt::QtStatusItem statusItem(queue, bus, [&appearance] { appearance.apply(); });
    qt::QtUrlLoadingProcess urlLoading;
    qt::SystemWallClock wallClock;
    // Optional, so that `runLoop` can destroy it before the application object.
    std::optional<AppDelegate> delegate;
    delegate.emplace(Ports{.accessibility = desktop.accessibility,
                           .alertSound = desktop.alertSound,
                           .alerts = alerts,
                           .application = application,
                           .displays = desktop.displays,
                           .hotKeys = desktop.hotKeys,
                           .keyNames = desktop.keyNames,
                           .localKeys = localKeys,
                           .loginItem = desktop.loginItem,
                           .mainMenu = desktop.mainMenu,
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
    // Not fatal: the program shows in its menu and settings that it cannot move windows.
    if (session == x11::Session::Wayland)
        say("this is a Wayland session, where only XWayland windows could be moved; use an X11 session");
    const x11::CommandChannel commands(*connection, [&delegate](const std::vector<std::string>& words) {
        CommandReply reply = delegate->runCommand(words);
        return CommandAnswer{static_cast<std::uint8_t>(reply.exit), std::move(reply.text)};
    });
    return runLoop(programName, queue, terminationSignals, *connection, bus, delegate);
}

} // namespace

} // namespace tessarel

int main(int argumentCount, char** arguments) {
    const tessarel::CommandLine line = tessarel::readCommandLine(argumentCount, arguments);
    if (line.exitCode)
        return *line.exitCode;
    if (!line.words.empty())
        return tessarel::report(tessarel::x11::sendCommand(nullptr, line.words));
    const std::optional<int> exitCode = tessarel::runOnPlasma(arguments[0]);
    return exitCode ? *exitCode : tessarel::run(arguments[0]);
}
