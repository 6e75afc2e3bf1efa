#pragma once

#include <string>
#include <sys/types.h>
#include <vector>

namespace tessarel::bench {

/// A child process that the benchmark starts, and ends in the destructor.
class ChildProcess {
public:
    /// Starts `command`, looked up in PATH. Throws std::runtime_error on failure.
    explicit ChildProcess(const std::vector<std::string>& command);
    /// Sends SIGTERM, and SIGKILL if the process is still running two seconds later.
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    [[nodiscard]] pid_t pid() const { return m_pid; }
    /// Returns true if the process has written to its standard output, which is left unread.
    [[nodiscard]] bool hasSpoken() const;
    /// Returns true while the process is running; reaps it once it has exited.
    [[nodiscard]] bool isRunning();

private:
    bool reap(int options);

    pid_t m_pid = -1;
    int m_output = -1;
};

} // namespace tessarel::bench
