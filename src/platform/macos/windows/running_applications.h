// SPDX-License-Identifier: MIT

#pragma once

#include "model/signal.h"
#include "model/subscription.h"
#include "platform/macos/objects/notification_observer.h"
#include "ports/desktop/workspace_port.h"

#import <AppKit/AppKit.h>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

// For Objective-C++ sources only.

namespace tessarel::macos {

/// Converts `application`; `std::nullopt` for nil and for an application that has no process at the moment.
[[nodiscard]] std::optional<RunningApplication> runningFrom(NSRunningApplication* application);

/// Returns the application that a notification of the workspace is about; nil when it names none.
[[nodiscard]] NSRunningApplication* subjectOf(NSNotification* notification);

/// Reports applications that have terminated.
///
/// At that time the system may have forgotten the process id, as it does for idle applications that it has
/// terminated by itself. So every application is recorded while it runs, and reported as it was recorded.
class Terminations : public std::enable_shared_from_this<Terminations> {
public:
    Terminations();

    /// Calls `terminated` until the returned subscription is destroyed. The subscription keeps this object
    /// alive.
    [[nodiscard]] SubscriptionPtr add(std::function<void(const RunningApplication&)> terminated);

private:
    /// The record of one application.
    struct Known {
        ObjcRef<NSRunningApplication*> application;
        RunningApplication running;
    };

    /// Records an application; does nothing for one that has no process.
    void note(NSRunningApplication* application);
    /// Calls the handlers with the record of `application`, and forgets it. Does nothing for an application
    /// that neither was recorded nor has a process.
    void tell(NSRunningApplication* application);
    /// Compares with `isEqual:`, since notifications may carry another object for the same application.
    [[nodiscard]] std::vector<Known>::iterator find(NSRunningApplication* application);

    std::vector<Known> m_known;
    Signal<const RunningApplication&> m_handlers;
    NotificationObserver m_launched;
    NotificationObserver m_terminated;
};

} // namespace tessarel::macos
