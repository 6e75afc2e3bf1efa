// SPDX-License-Identifier: MIT

#pragma once

#include "ports/main_queue_port.h"

#include <QEventLoop>
#include <QTimer>

#include <chrono>

namespace tessarel {

/// Runs Qt's loop for `duration`, then until no event is waiting. For tests of real clocks.
inline void runQtLoop(MainQueuePort::Duration duration) {
    QEventLoop loop;
    QTimer::singleShot(std::chrono::ceil<std::chrono::milliseconds>(duration), Qt::PreciseTimer, &loop,
                       &QEventLoop::quit);
    loop.exec();
    while (loop.processEvents())
        continue;
}

} // namespace tessarel
