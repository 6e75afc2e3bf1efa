#include "platform/qt/qt_messages.h"

#include <QString>
#include <QtGlobal>

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace tessarel::qt {

namespace {

std::function<void()>& lossHandler() {
    static std::function<void()> handler; // Qt takes a function without a state
    return handler;
}

void handleMessage(QtMsgType type, const QMessageLogContext&, const QString& message) {
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
