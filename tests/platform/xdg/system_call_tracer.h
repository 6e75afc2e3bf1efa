#pragma once

#include <functional>
#include <optional>
#include <sys/types.h>

namespace tessarel::xdg {

/// A forked copy of this process that runs some work, halted at the beginning and at the end of every system
/// call it makes. The copy can run the work again, which spares a fork of a large process. Ends with this
/// object at the latest.
class TracedWork {
public:
    struct Halt {
        long systemCall = 0; ///< known at its beginning only
        bool atBeginning = false;
    };

    explicit TracedWork(const std::function<void()>& work);
    TracedWork(const TracedWork&) = delete;
    TracedWork& operator=(const TracedWork&) = delete;
    ~TracedWork();

    /// Whether the copy runs under our eyes. Some machines allow nobody to trace.
    [[nodiscard]] bool isTraced() const { return m_halted; }

    /// Goes on to the next halt; none when the work is done or the process has ended.
    [[nodiscard]] std::optional<Halt> next();

    /// At the beginning of a system call: has it fail with `error` in place of being made. Goes on to its
    /// end.
    void fail(int error);

    /// Ends the process where it stands.
    void kill();

    /// Lets the rest run without halts. True if the work is done and the process still runs.
    [[nodiscard]] bool finish();

    /// After the work is done: the next call of `next()` or `finish()` begins it again.
    void again() { m_isDone = false; }

private:
    pid_t m_process = -1;
    bool m_halted = false;
    bool m_isDone = false;
    bool m_isInOrder = true; ///< once done: it came to its end, and to no other signal
};

} // namespace tessarel::xdg
