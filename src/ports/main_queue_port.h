// SPDX-License-Identifier: MIT

#pragma once

#include "model/subscription.h"

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
    ///
    /// Destroying the returned subscription cancels the work if it has not started. The work may destroy its
    /// own subscription, and the subscription may outlive the queue. An owner with several pieces of pending
    /// work keeps them in a `DeferredWork`.
    [[nodiscard]] virtual SubscriptionPtr asyncAfter(Duration delay, std::function<void()> work) = 0;

    /// Runs `work` in the next iteration of the event loop, unless the returned subscription is destroyed
    /// before.
    [[nodiscard]] SubscriptionPtr async(std::function<void()> work) {
        return asyncAfter(Duration::zero(), std::move(work));
    }
};

} // namespace tessarel
