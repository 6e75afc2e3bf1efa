// SPDX-License-Identifier: MIT

#pragma once

#include "platform/sim/time/sim_clock.h"
#include "ports/main_queue_port.h"

namespace tessarel::sim {

/// A main queue on the simulated clock. Its work is cancelled when the queue is destroyed.
class SimMainQueue : public MainQueuePort {
public:
    explicit SimMainQueue(SimClock& clock) : m_clock(clock) {}
    SimMainQueue(const SimMainQueue&) = delete;
    SimMainQueue& operator=(const SimMainQueue&) = delete;
    ~SimMainQueue() override { m_clock.cancelAll(this); }

    [[nodiscard]] TimePoint now() override { return m_clock.now(); }
    [[nodiscard]] SubscriptionPtr asyncAfter(Duration delay, std::function<void()> work) override {
        return m_clock.schedule(this, delay, std::move(work));
    }

private:
    SimClock& m_clock;
};

} // namespace tessarel::sim
