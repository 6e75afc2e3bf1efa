// SPDX-License-Identifier: MIT

#pragma once

#include "model/subscription.h"
#include "ports/main_queue_port.h"

#include <functional>
#include <memory>
#include <utility>

namespace tessarel {

/// Like `MainQueuePort::asyncAfter`, for work that the test does not cancel: it holds its own subscription.
inline void asyncAfter(MainQueuePort& queue, MainQueuePort::Duration delay, std::function<void()> work) {
    auto own = std::make_shared<SubscriptionPtr>();
    *own = queue.asyncAfter(delay, [own, work = std::move(work)] { work(); });
}

/// Like `MainQueuePort::async`, for work that the test does not cancel.
inline void async(MainQueuePort& queue, std::function<void()> work) {
    asyncAfter(queue, MainQueuePort::Duration::zero(), std::move(work));
}

} // namespace tessarel
