// SPDX-License-Identifier: MIT

#include "platform/qt_web/process/ending_processes.h"

#include <utility>

namespace tessarel::qt {

namespace {

/// How long the program's exit may wait for a killed process. One that the kernel cannot end, because it
/// waits for a disk, lives on.
constexpr int kLongestWait = 1000; // in milliseconds

} // namespace

EndingProcesses::~EndingProcesses() {
    for (QProcess* const process : std::exchange(m_processes, {})) {
        // Otherwise the object remains, until the event loop reports the end of the process: its destructor
        // would wait for half a minute.
        if (process->state() == QProcess::NotRunning || process->waitForFinished(kLongestWait))
            delete process;
    }
}

void EndingProcesses::add(std::unique_ptr<QProcess> process) {
    QProcess* const ending = m_processes.emplace_back(process.release());
    QObject::connect(ending, &QObject::destroyed, &m_receiver,
                     [this, ending] { std::erase(m_processes, ending); });
    if (ending->state() == QProcess::NotRunning) {
        ending->deleteLater(); // its own code may be on the stack
        return;
    }
    QObject::connect(ending, &QProcess::stateChanged, ending, [ending](QProcess::ProcessState state) {
        if (state == QProcess::NotRunning)
            ending->deleteLater();
    });
    ending->closeReadChannel(QProcess::StandardOutput);
    ending->kill();
}

} // namespace tessarel::qt
