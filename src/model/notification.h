#pragma once

#include "model/subscription.h"

#include <functional>
#include <memory>

namespace tessarel {

/// An in-process broadcast without arguments.
///
/// Observers are called in the order in which they were added, on the poster's stack. An observer may add or
/// remove observers, itself included, while a post is under way: removed ones are not called any more, added
/// ones wait for the next post.
class Notification {
public:
    Notification();
    Notification(const Notification&) = delete;
    Notification& operator=(const Notification&) = delete;
    ~Notification();

    /// Calls `observer` at every post until the returned subscription ends.
    [[nodiscard]] SubscriptionPtr addObserver(std::function<void()> observer);

    void post();

private:
    struct Observers;
    std::shared_ptr<Observers> m_observers; // shared with subscriptions, which may outlive the notification
};

} // namespace tessarel
