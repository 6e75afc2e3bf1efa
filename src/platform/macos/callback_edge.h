#pragma once

#include <cstdio>
#include <exception>

namespace tessarel::macos {

/// Runs `work`, which the system has called for and through which no exception may go back to it: one that
/// gets here is told on the standard error stream, and the event counts as dealt with.
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
