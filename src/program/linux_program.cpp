// SPDX-License-Identifier: MIT

#include "program/linux_program.h"

#include "platform/posix/failed_writes.h"
#include "platform/qt/alert_dialog.h"
#include "platform/qt_x11/qt_connection.h"
#include "platform/xdg/home_folder.h"
#include "program/qt_program.h"
#include "program/report.h"
#include "settings_ui/settings_window_controller.h"

#include <QApplication>

#include <clocale>
#include <cstdint>
#include <cstdlib>
#include <utility>

namespace tessarel {

namespace {

/// Arguments as `main` gets them. Refers to the words that it is made from.
struct QtArguments {
    explicit QtArguments(std::vector<std::string>& words) : count(static_cast<int>(words.size())) {
        for (std::string& word : words)
            values.push_back(word.data());
        values.push_back(nullptr);
    }

    int count;
    std::vector<char*> values;
};

} // namespace

LinuxProgram::LinuxProgram(const char* programName) : m_programName(programName) {
    xdg::settleHome();
    posix::surviveFailedWrites();
}

/// Waits for a short time for the input method. The result is needed until the application object exists.
LinuxProgram::Scope LinuxProgram::beforeQt() {
    if (qt::InputMethodProbe::usesSessionBus())
        m_bus.beforeInputMethod();
    return m_inputMethod.beforeQt();
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

/// Returns the arguments of Qt: fixed, whatever the session suggests or the user passes.
std::vector<std::string> LinuxProgram::qtOptions(const std::string& platforms) const {
    return {m_programName, "-platform", platforms, "-platformtheme", "generic"};
}

void LinuxProgram::showFailure(const Alert& alert) {
    // Qt aborts the program if it has no platform, and reports each that does not work.
    std::vector<std::string> options = qtOptions("wayland;xcb;offscreen");
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    QtArguments arguments(options);
    QApplication::setDesktopSettingsAware(false);
    describeProgramToQt();
    const Scope inputMethod = beforeQt();
    const QApplication application(arguments.count, arguments.values.data());
    if (QApplication::platformName() == QStringLiteral("offscreen"))
        return;
    useControlStyle();
    m_bus.start(qt::announcedAccessibilityBus);
    beforeWindow();
    qt::AlertDialog dialog(alert);
    const auto termination =
        m_terminationSignals.onReceived(m_queue, [&dialog] { dialog.done(QDialog::Rejected); });
    (void)dialog.run([](QWidget&) {});
}

/// Runs Qt's event loop until the program is asked to quit. Returns the exit code. Destroys the delegate
/// before the application object, because the delegate's windows need Qt.
int LinuxProgram::runLoop(const BackEnd& backEnd, std::optional<AppDelegate>& delegate) {
    std::vector<std::string> options = qtOptions(backEnd.qtPlatforms);
    QtArguments arguments(options);

    // Without the colours and fonts that Qt would take from the desktop: `QtAppearance` sets the palette.
    QApplication::setDesktopSettingsAware(false);
    describeProgramToQt();
    Scope untilQt = backEnd.beforeQt();
    Scope inputMethod = beforeQt();
    const QApplication application(arguments.count, arguments.values.data());
    useControlStyle();
    inputMethod.reset();
    untilQt.reset();
    m_bus.start(qt::announcedAccessibilityBus);
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
