// SPDX-License-Identifier: MIT

#pragma once

#include "model/subscription.h"
#include "ports/main_queue_port.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <utility>

namespace tessarel::sim {

/// The clock of the simulated desktop, with the work scheduled on it. Time passes only when a caller advances
/// the clock.
class SimClock {
public:
    using Duration = MainQueuePort::Duration;
    using TimePoint = MainQueuePort::TimePoint;

    [[nodiscard]] TimePoint now() const { return m_now; }

    /// Advances the clock without running any work, like a call that blocks the main thread.
    void block(Duration duration) { m_now += duration; }

    /// Advances the clock like an event loop: runs each piece of work when it is due. Work that is due at the
    /// same time runs in the order in which it was scheduled.
    void advance(Duration duration);

    /// Schedules work of `owner`. A negative delay counts as zero. Destroying the returned subscription
    /// cancels the work. The subscription may outlive the clock.
    [[nodiscard]] SubscriptionPtr schedule(const void* owner, Duration delay, std::function<void()> work);
    /// Cancels all work of `owner` that has not run yet.
    void cancelAll(const void* owner);
    /// Returns the number of pieces of work that have not run yet.
    [[nodiscard]] std::size_t waiting() const { return m_schedule->size(); }

private:
    struct Scheduled {
        const void* owner = nullptr;
        std::function<void()> work;
    };
    /// Keyed by due time and a running number, which decides between work that is due at the same time.
    using Schedule = std::map<std::pair<TimePoint, std::uint64_t>, Scheduled>;

    TimePoint m_now{};
    std::uint64_t m_order = 0;
    std::shared_ptr<Schedule> m_schedule = std::make_shared<Schedule>(); // subscriptions hold weak references
};

} // namespace tessarel::sim
