#pragma once

#include "ports/main_queue_port.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

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

    /// Schedules work of `owner`. A negative delay counts as zero.
    void schedule(const void* owner, Duration delay, std::function<void()> work);
    /// Cancels all work of `owner` that has not run yet.
    void cancelAll(const void* owner);
    /// Returns the number of pieces of work that have not run yet.
    [[nodiscard]] std::size_t waiting() const { return m_scheduled.size(); }

private:
    struct Scheduled {
        TimePoint due;
        std::uint64_t order = 0; ///< decides between work that is due at the same time
        const void* owner = nullptr;
        std::function<void()> work;
    };

    /// Returns the work that is due first; the end of the list if there is none.
    [[nodiscard]] std::vector<Scheduled>::iterator next();

    TimePoint m_now{};
    std::uint64_t m_order = 0;
    std::vector<Scheduled> m_scheduled;
};

} // namespace tessarel::sim
