#pragma once

#include "model/subscription.h"
#include "ports/main_queue_port.h"

#include <functional>
#include <memory>

namespace tessarel::qt {

/// The main queue on Qt's event loop.
///
/// May be made, and given work, before the application object: the work waits for the loop. An idle queue has
/// no timer and wakes nobody. Work goes on while a modal message runs its own loop.
class QtMainQueue : public MainQueuePort {
public:
    QtMainQueue();
    QtMainQueue(const QtMainQueue&) = delete;
    QtMainQueue& operator=(const QtMainQueue&) = delete;
    ~QtMainQueue() override;

    [[nodiscard]] TimePoint now() override;

    /// A negative delay counts as none; one beyond the end of the clock never comes due.
    void asyncAfter(Duration delay, std::function<void()> work) override;

    /// Calls `readable` at every turn of the loop at which `fd` has something to read, until the answer ends.
    /// Needs the application object. The file must stay open for as long as the answer lives.
    [[nodiscard]] SubscriptionPtr onReadable(int fd, std::function<void()> readable);

private:
    class Schedule;
    std::unique_ptr<Schedule> m_schedule;
};

} // namespace tessarel::qt
