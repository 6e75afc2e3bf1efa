#include "platform/qt/qt_messages.h"

#include <QString>
#include <QtGlobal>

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace tessarel::qt {

namespace {

/// Returns the callback for a lost display. It is global, because Qt accepts only a plain function as a
/// message handler.
std::function<void()>& lossHandler() {
    static std::function<void()> handler;
    return handler;
}

void handleMessage(QtMsgType type, const QMessageLogContext&, const QString& message) {
    // Qt reports the loss only by this warning, directly before it ends the process.
    if (message.startsWith(QLatin1String("The X11 connection broke")))
        lossHandler()();
    if (type != QtFatalMsg)
        return;
    std::fprintf(stderr, "tessarel: %s\n", message.simplified().toUtf8().constData());
    std::_Exit(EXIT_FAILURE);
}

} // namespace

void installMessageHandler(std::function<void()> displayLost) {
    lossHandler() = std::move(displayLost);
    qInstallMessageHandler(handleMessage);
}

} // namespace tessarel::qt
