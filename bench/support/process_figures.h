#pragma once

#include <chrono>
#include <sys/types.h>

namespace tessarel::bench {

/// Time that all threads of the process have spent on a processor so far; exact while they sleep.
[[nodiscard]] std::chrono::nanoseconds cpuTime(pid_t pid);

/// How often threads of the process gave up the processor to wait for something, so far.
[[nodiscard]] long voluntarySwitches(pid_t pid);

/// Memory of a process in KiB.
struct Memory {
    long resident = 0;     ///< all its pages
    long proportional = 0; ///< each page divided by the number of processes that share it
    long anonymous = 0;    ///< pages backed by no file: what it made itself
};

[[nodiscard]] Memory memory(pid_t pid);

} // namespace tessarel::bench
