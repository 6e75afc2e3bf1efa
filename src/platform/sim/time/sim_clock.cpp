// SPDX-License-Identifier: MIT

#include "platform/sim/time/sim_clock.h"

#include "model/call_on_end.h"

#include <algorithm>

namespace tessarel::sim {

void SimClock::advance(Duration duration) {
    // Work may schedule or cancel other work, and block() may move the clock beyond `end`.
    const TimePoint end = m_now + duration;
    while (!m_schedule->empty() && m_schedule->begin()->first.first <= end) {
        const auto next = m_schedule->extract(m_schedule->begin());
        m_now = std::max(m_now, next.key().first);
        next.mapped().work();
    }
    m_now = std::max(m_now, end);
}

SubscriptionPtr SimClock::schedule(const void* owner, Duration delay, std::function<void()> work) {
    const std::pair key(m_now + std::max(delay, Duration::zero()), m_order++);
    m_schedule->emplace(key, Scheduled{owner, std::move(work)});
    return callOnEnd([weak = std::weak_ptr(m_schedule), key] {
        if (const auto schedule = weak.lock())
            schedule->erase(key);
    });
}

void SimClock::cancelAll(const void* owner) {
    std::erase_if(*m_schedule, [&](const auto& item) { return item.second.owner == owner; });
}

} // namespace tessarel::sim
