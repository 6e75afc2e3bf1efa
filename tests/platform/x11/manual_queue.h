// SPDX-License-Identifier: MIT

#pragma once

#include "model/call_on_end.h"
#include "ports/main_queue_port.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <utility>

namespace tessarel::x11 {

/// A main queue that the test runs by hand, without waiting for delays. Its clock stands still unless the
/// test advances it.
class ManualQueue : public MainQueuePort {
public:
    [[nodiscard]] TimePoint now() override { return m_now; }
    void advance(Duration duration) { m_now += duration; }

    [[nodiscard]] SubscriptionPtr asyncAfter(Duration /*delay*/, std::function<void()> work) override {
        const std::uint64_t number = m_next++;
        m_work->emplace(number, std::move(work));
        return callOnEnd([weak = std::weak_ptr(m_work), number] {
            if (const auto pending = weak.lock())
                pending->erase(number);
        });
    }

    [[nodiscard]] std::size_t waiting() const { return m_work->size(); }

    /// Runs the work that is queued now; work that it queues waits for the next call.
    void runTurn() {
        const std::uint64_t end = m_next;
        while (!m_work->empty() && m_work->begin()->first < end)
            m_work->extract(m_work->begin()).mapped()();
    }

private:
    using Work = std::map<std::uint64_t, std::function<void()>>;

    TimePoint m_now{};
    std::uint64_t m_next = 0;
    std::shared_ptr<Work> m_work = std::make_shared<Work>(); // subscriptions hold weak references
};

} // namespace tessarel::x11
