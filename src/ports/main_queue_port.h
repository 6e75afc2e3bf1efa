#pragma once

#include <chrono>
#include <functional>
#include <utility>

namespace tessarel {

/// Time, and work for later on the main thread. The only clock that the program knows.
class MainQueuePort {
public:
    using Duration = std::chrono::nanoseconds;
    /// Time since an arbitrary moment; never goes back.
    using TimePoint = std::chrono::time_point<std::chrono::steady_clock, Duration>;

    virtual ~MainQueuePort() = default;

    [[nodiscard]] virtual TimePoint now() = 0;

    /// Runs `work` once, `delay` from now, never before this call has returned. Work due at the same moment
    /// runs in the order in which it was handed over. Nothing runs any more once the queue has been
    /// destroyed.
    virtual void asyncAfter(Duration delay, std::function<void()> work) = 0;

    /// Runs `work` at the next turn of the loop.
    void async(std::function<void()> work) { asyncAfter(Duration::zero(), std::move(work)); }
};

} // namespace tessarel
