// SPDX-License-Identifier: MIT

#pragma once

#include <QObject>
#include <QProcess>

#include <memory>
#include <vector>

namespace tessarel::qt {

/// Processes that are not needed any more. Kills each and destroys its object once it has exited, because the
/// destructor of QProcess waits for that.
class EndingProcesses {
public:
    EndingProcesses() = default;
    EndingProcesses(const EndingProcesses&) = delete;
    EndingProcesses& operator=(const EndingProcesses&) = delete;
    /// Waits a moment for the processes that have not exited yet.
    ~EndingProcesses();

    void add(std::unique_ptr<QProcess> process);

private:
    std::vector<QProcess*> m_processes;
    QObject m_receiver;
};

} // namespace tessarel::qt
