// SPDX-License-Identifier: MIT

#pragma once

#include <cstdio>
#include <exception>

namespace tessarel::macos {

/// Runs `work`, the body of a callback that the system calls. An exception must not unwind into the system's
/// stack frames: it is caught and reported on the standard error stream, and the event counts as handled.
template <class Work>
void atCallbackEdge(Work&& work) noexcept {
    try {
        work();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "tessarel: an event was not dealt with: %s\n", error.what());
    } catch (...) {
        std::fputs("tessarel: an event was not dealt with\n", stderr);
    }
}

} // namespace tessarel::macos
