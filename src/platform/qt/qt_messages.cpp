// SPDX-License-Identifier: MIT

#include "platform/qt/qt_messages.h"

#include <QString>
#include <QtGlobal>

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace tessarel::qt {

namespace {

struct DisplayLoss {
    std::function<void()> handle;
    std::function<bool()> hasHappened;
};

/// Returns the callbacks for a lost display. They are global, because Qt accepts only a plain function as a
/// message handler.
DisplayLoss& displayLoss() {
    static DisplayLoss loss;
    return loss;
}

void handleMessage(QtMsgType type, const QMessageLogContext&, const QString& message) {
    // Qt reports the loss only by this warning, directly before it ends the process.
    const bool isReport = message.startsWith(QLatin1String("The X11 connection broke")) ||
                          message.startsWith(QLatin1String("The Wayland connection "));
    if (isReport || (type == QtFatalMsg && displayLoss().hasHappened()))
        displayLoss().handle();
    if (type != QtFatalMsg)
        return;
    std::fprintf(stderr, "tessarel: %s\n", message.simplified().toUtf8().constData());
    std::_Exit(EXIT_FAILURE);
}

} // namespace

void installMessageHandler(std::function<void()> displayLost, std::function<bool()> isDisplayLost) {
    displayLoss() = {.handle = std::move(displayLost), .hasHappened = std::move(isDisplayLost)};
    qInstallMessageHandler(handleMessage);
}

} // namespace tessarel::qt
