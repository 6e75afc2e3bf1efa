// SPDX-License-Identifier: MIT

#include "platform/qt_web/url_service.h"

#include "platform/qt_web/memory_limit.h"
#include "platform/qt_web/process/url_messages.h"
#include "platform/qt_web/qt_url_loading.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QFile>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <unistd.h>

namespace tessarel::qt {

namespace {

using namespace std::chrono_literals;

constexpr std::chrono::seconds kTimeLimit = 15s;
/// In addition, for a program that cannot even handle its own time limit.
constexpr unsigned kDeadline = 16;
constexpr qint64 kLargestRequest = 64LL * 1024;

} // namespace

void serveUrlRequest() {
    ::alarm(kDeadline); // the signal ends the process
    limitMemory();
    QFile input;
    QFile output;
    if (!input.open(STDIN_FILENO, QIODevice::ReadOnly) || !output.open(STDOUT_FILENO, QIODevice::WriteOnly))
        std::_Exit(EXIT_FAILURE);
    auto request = decodeUrlRequest(input.readLine(kLargestRequest));
    if (!request)
        std::_Exit(EXIT_FAILURE);
    request->timeLimit = std::min<std::chrono::milliseconds>(request->timeLimit, kTimeLimit);

    QtUrlLoading loading;
    const auto load = loading.load(*request, [&output](const auto& response) {
        output.write(encodeUrlResponse(response));
        output.flush();
        // Nothing is left to do, and the end of the application object would wait for the system's name
        // lookup.
        std::_Exit(EXIT_SUCCESS);
    });
    const int exitCode = QCoreApplication::exec();
    static_cast<void>(load); // was needed until now
    std::_Exit(exitCode);
}

} // namespace tessarel::qt
