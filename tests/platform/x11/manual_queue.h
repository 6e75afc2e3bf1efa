#pragma once

#include "ports/main_queue_port.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <utility>
#include <vector>

namespace tessarel::x11 {

/// A main queue that the test runs by hand, without waiting for delays.
class ManualQueue : public MainQueuePort {
public:
    [[nodiscard]] TimePoint now() override { return TimePoint::clock::now(); }

    void asyncAfter(Duration /*delay*/, std::function<void()> work) override {
        m_work.push_back(std::move(work));
    }

    [[nodiscard]] std::size_t waiting() const { return m_work.size(); }

    /// Runs the work that is queued now; work that it queues waits for the next call.
    void runTurn() {
        for (const auto& work : std::exchange(m_work, {}))
            work();
    }

private:
    std::vector<std::function<void()>> m_work;
};

} // namespace tessarel::x11
