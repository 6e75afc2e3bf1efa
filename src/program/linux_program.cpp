// SPDX-License-Identifier: MIT

#include "program/linux_program.h"

#include "platform/posix/failed_writes.h"
#include "platform/xdg/home_folder.h"
#include "program/qt_program.h"
#include "program/report.h"
#include "settings_ui/settings_window_controller.h"

#include <QApplication>

#include <algorithm>
#include <array>
#include <clocale>
#include <cstdint>
#include <cstdlib>
#include <utility>

namespace tessarel {

LinuxProgram::LinuxProgram(const char* programName) : m_programName(programName) {
    xdg::settleHome();
    posix::surviveFailedWrites();
}

void LinuxProgram::beforeWindow() {
    m_bus.beforeWindow();
    m_appearance.apply();
}

int LinuxProgram::launch(const Ports& ports, const BackEnd& backEnd) {
    // Optional, so that `runLoop` can destroy it before the application object.
    std::optional<AppDelegate> delegate;
    delegate.emplace(ports, [this](Services& services, const Ports& all) {
        beforeWindow();
        return std::make_unique<SettingsWindowController>(services, all);
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
    const Scope commands = backEnd.receiveCommands([&delegate](const std::vector<std::string>& words) {
        CommandReply reply = delegate->runCommand(words);
        return CommandAnswer{static_cast<std::uint8_t>(reply.exit), std::move(reply.text)};
    });
    return runLoop(backEnd, delegate);
}

/// Runs Qt's event loop until the program is asked to quit. Returns the exit code. Destroys the delegate
/// before the application object, because the delegate's windows need Qt.
int LinuxProgram::runLoop(const BackEnd& backEnd, std::optional<AppDelegate>& delegate) {
    // Fixed, whatever the session suggests or the user passes: the back end decides.
    std::array<std::string, 5> options{m_programName, "-platform", backEnd.qtPlatforms, "-platformtheme",
                                       "generic"};
    // Ends with a null pointer, like the arguments of `main`.
    std::array<char*, 6> arguments{};
    std::ranges::transform(options, arguments.begin(), [](std::string& option) { return option.data(); });
    int argumentCount = options.size();

    // Without the colours and fonts that Qt would take from the desktop: `QtAppearance` sets the palette.
    QApplication::setDesktopSettingsAware(false);
    describeProgramToQt();
    Scope untilQt = backEnd.beforeQt();
    const QApplication application(argumentCount, arguments.data());
    useControlStyle();
    untilQt.reset();
    m_bus.start();
    // QApplication has set the user's locale, whose decimal point may have several bytes; see `readJson`.
    std::setlocale(LC_NUMERIC, "C");
    const Scope besideQt = backEnd.withQt();
    const auto events = m_queue.onReadable(backEnd.events, backEnd.dispatch);
    const auto termination =
        m_terminationSignals.onReceived(m_queue, [] { QApplication::exit(EXIT_SUCCESS); });
    const int exitCode = QCoreApplication::exec(); // see SessionBus::start
    delegate.reset();
    return exitCode;
}

} // namespace tessarel
