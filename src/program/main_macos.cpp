// SPDX-License-Identifier: MIT

#include "platform/macos/shell/command_channel.h"
#include "platform/posix/failed_writes.h"
#include "platform/posix/termination_signals.h"
#include "platform/qt/qt_messages.h"
#include "program/command_line.h"
#include "program/mac_program.h"
#include "program/qt_program.h"
#include "program/report.h"

#include <QApplication>
#include <QWidget>

#include <bit>
#include <clocale>
#include <cstdlib>

namespace tessarel {

namespace {

/// Builds the program and runs it. Starts Qt first, because Qt creates the system's application object,
/// without which there is no menu bar.
int run(int argumentCount, char** arguments) {
    // macOS has no display connection that could be lost.
    qt::installMessageHandler([] {}, [] { return false; });
    posix::surviveFailedWrites();
    qt::TerminationSignals terminationSignals;
    describeProgramToQt();
    MacProgram::prepareToolkit();
    const QApplication application(argumentCount, arguments);
    useControlStyle();
    // QApplication has set the user's locale, whose decimal point may have several bytes; see `readJson`.
    std::setlocale(LC_NUMERIC, "C");
    MacProgram program([](QWidget& widget) { return std::bit_cast<void*>(widget.winId()); });
    const AppDelegate::Launch launch = program.launch();
    if (launch != AppDelegate::Launch::Running)
        return launch == AppDelegate::Launch::AnotherCopyRuns ? EXIT_SUCCESS : EXIT_FAILURE;
    const auto termination =
        terminationSignals.onReceived(program.mainQueue(), [] { QApplication::exit(EXIT_SUCCESS); });
    return QApplication::exec();
}

} // namespace

} // namespace tessarel

int main(int argumentCount, char** arguments) {
    const tessarel::CommandLine line = tessarel::readCommandLine(argumentCount, arguments);
    if (line.exitCode)
        return *line.exitCode;
    return line.words.empty() ? tessarel::run(argumentCount, arguments)
                              : tessarel::report(tessarel::macos::sendCommand(line.words));
}
