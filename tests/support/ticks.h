// SPDX-License-Identifier: MIT

#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace tessarel {

/// Counts the periods that have passed, in a thread of its own, which does not count while the whole process
/// is held up. So a test can limit how long something takes, with room for a busy machine.
class Ticks {
public:
    explicit Ticks(std::chrono::milliseconds period) : m_thread([this, period] { run(period); }) {}
    Ticks(const Ticks&) = delete;
    Ticks& operator=(const Ticks&) = delete;
    ~Ticks() {
        {
            const std::scoped_lock lock(m_mutex);
            m_isEnding = true;
        }
        m_end.notify_one();
        m_thread.join();
    }

    [[nodiscard]] int count() const {
        const std::scoped_lock lock(m_mutex);
        return m_count;
    }

private:
    void run(std::chrono::milliseconds period) {
        std::unique_lock lock(m_mutex);
        while (!m_end.wait_for(lock, period, [this] { return m_isEnding; }))
            ++m_count;
    }

    mutable std::mutex m_mutex;
    std::condition_variable m_end;
    bool m_isEnding = false;
    int m_count = 0;
    std::thread m_thread;
};

} // namespace tessarel
