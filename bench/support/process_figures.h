// SPDX-License-Identifier: MIT

#pragma once

#include "support/clock.h"

#include <chrono>
#include <cstddef>
#include <sys/types.h>

namespace tessarel::bench {

/// Returns the CPU time of all threads of the process so far. It is exact while they sleep.
[[nodiscard]] std::chrono::nanoseconds cpuTime(pid_t pid);

/// Returns how often the threads of the process have given up the processor to wait, so far.
[[nodiscard]] long voluntarySwitches(pid_t pid);

/// Waits until the process has used no CPU time for half a second. Returns the time until it last did.
[[nodiscard]] Clock::duration timeToRest(pid_t pid);

/// Returns how many file descriptors the process has open.
[[nodiscard]] std::size_t descriptors(pid_t pid);

/// Memory usage of a process in KiB.
struct Memory {
    long resident = 0;     ///< RSS: all resident pages
    long proportional = 0; ///< PSS: each page divided by the number of processes that share it
    long anonymous = 0;    ///< pages that no file backs, such as heap and stacks
};

[[nodiscard]] Memory memory(pid_t pid);

} // namespace tessarel::bench
