// SPDX-License-Identifier: MIT

#include "platform/qt/qt_main_queue.h"
#include "platform/qt/qt_messages.h"
#include "platform/qt_x11/display_loss_guard.h"
#include "platform/qt_x11/overlay/x11_overlay.h"
#include "platform/qt_x11/pointer_crossings.h"
#include "platform/qt_x11/qt_local_keys.h"
#include "platform/qt_x11/qt_x11_application.h"
#include "platform/qt_x11/work_area_notices.h"
#include "platform/x11/input/key_lookup.h"
#include "platform/x11/instance/command_channel.h"
#include "platform/x11/server/connection.h"
#include "platform/x11/windows/bring_to_user.h"
#include "platform/x11/x11_desktop.h"
#include "program/command_line.h"
#include "program/linux_program.h"
#include "program/plasma_program.h"
#include "program/report.h"
#include "program/send_command.h"

#include <cstdint>
#include <cstdlib>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unistd.h>
#include <utility>

namespace tessarel {

namespace {

/// What to do in a Wayland session of a desktop for which there is no back end.
constexpr const char* kUnservedWayland = "Log in to an X11 session or to KDE Plasma.";

/// Exits at once. The server has already released everything that was registered, and Qt cannot shut down in
/// order without its connection.
[[noreturn]] void endWithoutDisplay() {
    say("lost the connection to the X display");
    std::_Exit(EXIT_FAILURE);
}

/// Builds the program on X11 and runs it. Returns the exit code.
int runOnX11(const char* programName) {
    LinuxProgram program(programName);
    qt::QtMainQueue& queue = program.queue();
    const auto [connection, failure] = x11::Connection::open(nullptr, queue);
    if (!connection) {
        const bool isWayland = std::getenv("WAYLAND_DISPLAY") != nullptr;
        say("cannot open the X display: " + failure + (isWayland ? std::string(" ") + kUnservedWayland : ""));
        // Whoever has started the program from a menu does not see the standard error.
        if (isWayland && ::isatty(STDERR_FILENO) == 0)
            program.showFailure({"Tessarel cannot move windows in this session", kUnservedWayland, {"OK"}});
        return EXIT_FAILURE;
    }
    x11::Connection& link = *connection;
    qt::installMessageHandler(endWithoutDisplay,
                              [descriptor = link.fileDescriptor()] { return qt::isDisplayLost(descriptor); });
    const x11::Session session =
        x11::sessionOf(link, std::getenv("WAYLAND_DISPLAY"), std::getenv("XDG_SESSION_TYPE"));
    x11::X11Desktop desktop(
        link, session, queue, program.alerts(),
        [&queue](int fd, std::function<void()> readable) {
            return queue.onReadable(fd, std::move(readable));
        },
        say);
    qt::QtLocalKeys localKeys(x11::keyDown,
                              [&link](std::uint32_t keycode) { return x11::isKeyHeld(link, keycode); });
    qt::QtX11Application application([&link](xcb_window_t window) { x11::bringToUser(link, window); },
                                     [&link](xcb_window_t window) { x11::bringAlong(link, window); });
    qt::X11Overlay overlay(
        queue, [&desktop](const Rect& screenFrame) { return desktop.rootPixels(screenFrame); },
        [&program] { return program.appearance().accent(); });
    const auto loss = link.onLost(endWithoutDisplay);
    return program.run(
        desktop, {desktop.alertSound, application, localKeys, overlay},
        {.qtPlatforms = "xcb",
         .events = link.fileDescriptor(),
         .dispatch = [&link] { link.dispatch(); },
         .beforeQt =
             [&link] {
                 return std::make_shared<qt::DisplayLossGuard>(link.fileDescriptor(), endWithoutDisplay);
             },
         .withQt =
             [&queue] {
                 qt::ignorePointerCrossings();
                 return std::make_shared<qt::WorkAreaNotices>(queue);
             },
         .receiveCommands =
             [&link, &desktop, session](LinuxProgram::RunCommand run) {
                 // Not fatal: the program shows in its menu and settings that it cannot move windows.
                 if (session == x11::Session::Wayland)
                     say("this is a Wayland session, where only XWayland windows could be moved; use an X11 "
                         "session or KDE Plasma");
                 // Most commands move the active window.
                 return std::make_shared<x11::CommandChannel>(
                     link, std::move(run), [&desktop] { (void)desktop.windows.activeWindow(); });
             }});
}

} // namespace

} // namespace tessarel

int main(int argumentCount, char** arguments) {
    const tessarel::CommandLine line = tessarel::readCommandLine(argumentCount, arguments);
    if (line.exitCode)
        return *line.exitCode;
    if (!line.words.empty())
        return tessarel::report(tessarel::sendToRunningCopy(line.words));
    const std::optional<int> exitCode = tessarel::runOnPlasma(arguments[0]);
    return exitCode ? *exitCode : tessarel::runOnX11(arguments[0]);
}
