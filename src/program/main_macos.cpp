#include "platform/posix/termination_signals.h"
#include "platform/qt/qt_messages.h"
#include "program/mac_program.h"
#include "program/qt_program.h"

#include <QApplication>
#include <QWidget>

#include <bit>
#include <cstdlib>

namespace tessarel {

namespace {

/// Qt is started first: it makes the system's application object, without which there is no menu bar.
int run(int argumentCount, char** arguments) {
    qt::installMessageHandler([] {}); // a Mac does not lose its display
    qt::TerminationSignals terminationSignals;
    describeProgramToQt();
    MacProgram::prepareToolkit();
    const QApplication application(argumentCount, arguments);
    MacProgram program([](QWidget& widget) { return std::bit_cast<void*>(widget.winId()); });
    if (program.launch() == AppDelegate::Launch::AnotherCopyRuns)
        return EXIT_SUCCESS;
    const auto termination =
        terminationSignals.onReceived(program.mainQueue(), [] { QApplication::exit(EXIT_SUCCESS); });
    return QApplication::exec();
}

} // namespace

} // namespace tessarel

int main(int argumentCount, char** arguments) {
    return tessarel::run(argumentCount, arguments);
}
