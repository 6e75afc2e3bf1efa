// SPDX-License-Identifier: MIT

#include "platform/qt_web/memory_limit.h"

#include <cstdlib>
#include <exception>
#include <fstream>
#include <sys/resource.h>
#include <unistd.h>

namespace tessarel::qt {

namespace {

constexpr rlim_t kMost = 96UL * 1024 * 1024;

/// Returns the size of the data in bytes, as the kernel counts it for the limit; 0 without /proc.
rlim_t dataSize() {
    std::ifstream status("/proc/self/statm");
    rlim_t pages = 0;
    for (int column = 0; column < 6; ++column) // the sixth has data and stack
        status >> pages;
    return status ? pages * static_cast<rlim_t>(::sysconf(_SC_PAGESIZE)) : 0;
}

void limit(int resource, rlim_t most) {
    const rlimit both{most, most};
    ::setrlimit(resource, &both); // without it there is still the time limit
}

} // namespace

void limitMemory() {
    std::set_terminate([] { std::_Exit(EXIT_FAILURE); }); // Qt throws where memory is short
    limit(RLIMIT_CORE, 0);
    limit(RLIMIT_DATA, dataSize() + kMost);
}

} // namespace tessarel::qt
