// SPDX-License-Identifier: MIT

#pragma once

#include "model/subscription.h"
#include "ports/main_queue_port.h"

#include <cstddef>
#include <functional>
#include <map>
#include <utility>

namespace tessarel {

/// Pending work on the main queue that belongs to one owner, which has this object as a member.
///
/// The destructor cancels all work that has not started, so the work may use the owner without checking
/// whether it still exists. The work may destroy the owner.
class DeferredWork {
public:
    /// `queue` must outlive this object.
    explicit DeferredWork(MainQueuePort& queue) : m_queue(queue) {}

    /// Runs `work` once after `delay` (see `MainQueuePort::asyncAfter`).
    void asyncAfter(MainQueuePort::Duration delay, std::function<void()> work) {
        const std::size_t id = m_nextId++;
        m_pending[id] = m_queue.asyncAfter(delay, [this, id, work = std::move(work)] {
            m_pending.erase(id); // first, because the work may destroy this object
            work();
        });
    }

    /// Runs `work` in the next iteration of the event loop.
    void async(std::function<void()> work) { asyncAfter(MainQueuePort::Duration::zero(), std::move(work)); }

private:
    MainQueuePort& m_queue;
    std::size_t m_nextId = 0;
    std::map<std::size_t, SubscriptionPtr> m_pending;
};

} // namespace tessarel
