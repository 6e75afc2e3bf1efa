#pragma once

#include "model/subscription.h"

#include <functional>
#include <memory>

namespace tessarel {

/// A broadcast without arguments within the process.
///
/// Observers are called synchronously, in the order in which they were added. An observer may add or remove
/// observers, including itself, during a post: removed observers are not called, added ones are called from
/// the next post on. It may also destroy the notification.
class Notification {
public:
    Notification();
    Notification(const Notification&) = delete;
    Notification& operator=(const Notification&) = delete;
    ~Notification();

    /// Calls `observer` at every post until the returned subscription is destroyed.
    [[nodiscard]] SubscriptionPtr addObserver(std::function<void()> observer);

    /// Calls the observers before it returns.
    void post();

private:
    struct Observers;
    // Shared with subscriptions, which may outlive the notification.
    std::shared_ptr<Observers> m_observers;
};

} // namespace tessarel
