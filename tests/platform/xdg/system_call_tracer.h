// SPDX-License-Identifier: MIT

#pragma once

#include <functional>
#include <optional>
#include <sys/types.h>

namespace tessarel::xdg {

/// Runs work in a forked child process that stops at the entry and the exit of every system call. The child
/// can run the work again, which saves forking a large process. The destructor kills the child.
class TracedWork {
public:
    struct Halt {
        long systemCall = 0; ///< only known at the entry
        bool atBeginning = false;
    };

    explicit TracedWork(const std::function<void()>& work);
    TracedWork(const TracedWork&) = delete;
    TracedWork& operator=(const TracedWork&) = delete;
    ~TracedWork();

    /// Returns true if the child is being traced. Some systems do not permit tracing.
    [[nodiscard]] bool isTraced() const { return m_halted; }

    /// Continues to the next stop. Returns an empty result once the work is done or the process has ended.
    [[nodiscard]] std::optional<Halt> next();

    /// At the entry of a system call, makes the call fail with `error` without being executed. Continues to
    /// its exit.
    void fail(int error);

    /// Kills the child where it is.
    void kill();

    /// Runs the rest without stops. Returns true if the work is done and the child is still running.
    [[nodiscard]] bool finish();

    /// Once the work is done, makes the next call of `next()` or `finish()` run it again.
    void again() { m_isDone = false; }

private:
    pid_t m_process = -1;
    bool m_halted = false;
    bool m_isDone = false;
    bool m_isInOrder = true; ///< once done: whether the work ended normally, and not by a signal
};

/// Continues to the entry of the next system call: the one before it has been made, and this one has not.
/// Killing the process there leaves the same state as a crash between the two. Returns false once the work is
/// done.
[[nodiscard]] bool nextBeginning(TracedWork& work);

#if defined(__x86_64__)
/// Runs `work` and makes its `number`th file-related system call fail. Returns false if `work` makes fewer.
[[nodiscard]] bool failAt(int number, int error, TracedWork& work);
#endif

} // namespace tessarel::xdg
