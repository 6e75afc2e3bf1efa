// SPDX-License-Identifier: MIT

#pragma once

#include "model/subscription.h"
#include "ports/main_queue_port.h"

#include <functional>
#include <memory>

namespace tessarel::qt {

/// The main queue on top of Qt's event loop.
///
/// The queue may be created and given work before the application object exists; the work then waits for the
/// loop. An idle queue has no timer and does not wake the process. Work also runs in nested event loops, such
/// as that of a modal alert.
class QtMainQueue : public MainQueuePort {
public:
    QtMainQueue();
    QtMainQueue(const QtMainQueue&) = delete;
    QtMainQueue& operator=(const QtMainQueue&) = delete;
    ~QtMainQueue() override;

    [[nodiscard]] TimePoint now() override;

    /// Treats a negative delay as zero. Work with a delay beyond the end of the clock never runs.
    [[nodiscard]] SubscriptionPtr asyncAfter(Duration delay, std::function<void()> work) override;

    /// Calls `readable` in every iteration of the event loop in which `fd` has data to read, until the
    /// returned subscription is destroyed. Requires the application object. `fd` must stay open for as long
    /// as the subscription exists.
    [[nodiscard]] SubscriptionPtr onReadable(int fd, std::function<void()> readable);

private:
    class Schedule;
    std::shared_ptr<Schedule> m_schedule; // subscriptions hold weak references
};

} // namespace tessarel::qt
