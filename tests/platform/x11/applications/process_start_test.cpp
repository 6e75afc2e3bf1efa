// SPDX-License-Identifier: MIT

#include "platform/x11/applications/process_start.h"

#include <gtest/gtest.h>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

namespace tessarel::x11 {
namespace {

/// A child process that sleeps until it is killed.
class Sleeper {
public:
    Sleeper() : m_pid(fork()) {
        if (m_pid == 0) {
            for (;;)
                pause();
        }
    }
    Sleeper(const Sleeper&) = delete;
    Sleeper& operator=(const Sleeper&) = delete;
    ~Sleeper() {
        kill(m_pid, SIGKILL);
        waitpid(m_pid, nullptr, 0);
    }

    [[nodiscard]] ProcessId pid() const { return m_pid; }

    /// Kills the process and leaves it as a zombie.
    void end() const {
        kill(m_pid, SIGKILL);
        siginfo_t information{};
        waitid(P_PID, static_cast<id_t>(m_pid), &information, WEXITED | WNOWAIT);
    }

private:
    pid_t m_pid;
};

TEST(ProcessStart, StaysTheSameWhileTheProcessRuns) {
    const auto start = processStart(getpid());

    EXPECT_TRUE(start);
    EXPECT_EQ(processStart(getpid()), start);
}

TEST(ProcessStart, IsNotEarlierForAProcessStartedLater) {
    const Sleeper sleeper;

    EXPECT_GE(processStart(sleeper.pid()), processStart(getpid()));
}

TEST(ProcessStart, IsEmptyForAZombie) {
    const Sleeper sleeper;
    ASSERT_TRUE(processStart(sleeper.pid()));

    sleeper.end();

    EXPECT_FALSE(processStart(sleeper.pid()));
}

TEST(ProcessStart, IsEmptyForInvalidProcessIds) {
    EXPECT_FALSE(processStart(-1));
    EXPECT_FALSE(processStart(0));
}

} // namespace
} // namespace tessarel::x11
