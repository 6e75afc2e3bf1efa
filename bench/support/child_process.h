#pragma once

#include <string>
#include <sys/types.h>
#include <vector>

namespace tessarel::bench {

/// A program that the bench started and ends again.
class ChildProcess {
public:
    /// Starts `command`, looked up on PATH. Throws std::runtime_error when it cannot.
    explicit ChildProcess(const std::vector<std::string>& command);
    /// Asks the program to end, then makes it.
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    [[nodiscard]] pid_t pid() const { return m_pid; }
    /// Whether it has written anything to its standard output.
    [[nodiscard]] bool hasSpoken() const;
    /// Whether it is still there.
    [[nodiscard]] bool isRunning();

private:
    bool reap(int options);

    pid_t m_pid = -1;
    int m_output = -1;
};

} // namespace tessarel::bench
