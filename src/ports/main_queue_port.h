#pragma once

#include <chrono>
#include <functional>
#include <utility>

namespace tessarel {

/// Runs work on the main thread, and provides the monotonic clock by which the program measures delays.
class MainQueuePort {
public:
    using Duration = std::chrono::nanoseconds;
    /// Time since an arbitrary epoch. Never decreases.
    using TimePoint = std::chrono::time_point<std::chrono::steady_clock, Duration>;

    virtual ~MainQueuePort() = default;

    /// Returns the current time of the monotonic clock.
    [[nodiscard]] virtual TimePoint now() = 0;

    /// Runs `work` once on the main thread after `delay`, never before this call has returned. Work due at
    /// the same time runs in the order in which it was added. Destroying the queue discards pending work.
    virtual void asyncAfter(Duration delay, std::function<void()> work) = 0;

    /// Runs `work` in the next iteration of the event loop.
    void async(std::function<void()> work) { asyncAfter(Duration::zero(), std::move(work)); }
};

} // namespace tessarel
