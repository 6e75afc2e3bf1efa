#pragma once

#include "model/subscription.h"
#include "platform/macos/callbacks.h"
#include "platform/macos/notification_observer.h"
#include "ports/workspace_port.h"

#import <AppKit/AppKit.h>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

// For Objective-C++ sources only.

namespace tessarel::macos {

/// None of one that has no process at the moment, and of nil.
[[nodiscard]] std::optional<RunningApplication> runningFrom(NSRunningApplication* application);

/// Which application a notification of the workspace is about; nil when it does not say.
[[nodiscard]] NSRunningApplication* subjectOf(NSNotification* notification);

/// Tells of applications that end. By then the system may not know their process any more, as is so with
/// those that it has ended by itself while they had nothing to do; so each is noted while it runs.
class Terminations : public std::enable_shared_from_this<Terminations> {
public:
    Terminations();

    /// `terminated` is called until the answer ends, which keeps this here.
    [[nodiscard]] SubscriptionPtr add(std::function<void(const RunningApplication&)> terminated);

private:
    struct Known {
        ObjcRef<NSRunningApplication*> application;
        RunningApplication running;
    };

    void note(NSRunningApplication* application);
    void tell(NSRunningApplication* application);
    [[nodiscard]] std::vector<Known>::iterator find(NSRunningApplication* application);

    std::vector<Known> m_known;
    Callbacks<void(const RunningApplication&)> m_handlers;
    NotificationObserver m_launched;
    NotificationObserver m_terminated;
};

} // namespace tessarel::macos
