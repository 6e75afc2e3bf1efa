#pragma once

#include "ports/main_queue_port.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

namespace tessarel::sim {

/// The time of the simulated desktop, which passes only when told to, and the work that waits for it.
class SimClock {
public:
    using Duration = MainQueuePort::Duration;
    using TimePoint = MainQueuePort::TimePoint;

    [[nodiscard]] TimePoint now() const { return m_now; }

    /// Time passes while the main thread is held up: nothing runs.
    void block(Duration duration) { m_now += duration; }

    /// Time passes while the loop runs: work runs at the moment it is due, in the order of handing over.
    void advance(Duration duration);

    /// Hands over work of `owner`, who can call all of it off.
    void schedule(const void* owner, Duration delay, std::function<void()> work);
    void cancelAll(const void* owner);
    /// How much work waits for its time.
    [[nodiscard]] std::size_t waiting() const { return m_scheduled.size(); }

private:
    struct Scheduled {
        TimePoint due;
        std::uint64_t order = 0;
        const void* owner = nullptr;
        std::function<void()> work;
    };

    [[nodiscard]] std::vector<Scheduled>::iterator next();

    TimePoint m_now{};
    std::uint64_t m_order = 0;
    std::vector<Scheduled> m_scheduled;
};

} // namespace tessarel::sim
