#include "platform/sim/sim_clock.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace tessarel::sim {

void SimClock::advance(Duration duration) {
    // Work may schedule or cancel other work, and block() may move the clock beyond `end`.
    const TimePoint end = m_now + duration;
    for (auto item = next(); item != m_scheduled.end() && item->due <= end; item = next()) {
        m_now = std::max(m_now, item->due);
        const auto work = std::move(item->work);
        m_scheduled.erase(item);
        work();
    }
    m_now = std::max(m_now, end);
}

void SimClock::schedule(const void* owner, Duration delay, std::function<void()> work) {
    m_scheduled.push_back({m_now + std::max(delay, Duration::zero()), m_order++, owner, std::move(work)});
}

void SimClock::cancelAll(const void* owner) {
    std::erase_if(m_scheduled, [&](const Scheduled& item) { return item.owner == owner; });
}

std::vector<SimClock::Scheduled>::iterator SimClock::next() {
    return std::min_element(m_scheduled.begin(), m_scheduled.end(), [](const auto& a, const auto& b) {
        return std::tie(a.due, a.order) < std::tie(b.due, b.order);
    });
}

} // namespace tessarel::sim
