// SPDX-License-Identifier: MIT

#pragma once

#include "model/subscription.h"
#include "ports/desktop/process_id.h"
#include "ports/desktop/running_application.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tessarel {

/// A change in the life of an application.
enum class ApplicationEvent {
    Launched,  ///< it has started; not reported for applications that already run
    Activated, ///< it has come to the front
    Terminated ///< its process has exited, as far as the back end can observe it
};

/// The applications running on this desktop.
class WorkspacePort {
public:
    virtual ~WorkspacePort() = default;

    /// Returns the application whose window has the keyboard focus, or `std::nullopt` if no window has it. On
    /// systems where an application can be in front without a window, returns that application.
    [[nodiscard]] virtual std::optional<RunningApplication> frontmostApplication() = 0;

    /// Returns the application of process `pid`, or `std::nullopt` if the process has exited or is not an
    /// application. If several applications share the process, returns that of its frontmost window.
    [[nodiscard]] virtual std::optional<RunningApplication> runningApplication(ProcessId pid) = 0;

    /// Returns all running applications, in no particular order. This program may be among them.
    [[nodiscard]] virtual std::vector<RunningApplication> runningApplications() = 0;

    /// Returns the user-visible name of the installed application with identifier `bundleIdentifier`, or
    /// `std::nullopt` if none is installed.
    [[nodiscard]] virtual std::optional<std::string> displayName(const std::string& bundleIdentifier) = 0;

    /// Calls `handler` on the main thread with the application of each `event`, until the returned
    /// subscription is destroyed. A terminated application is passed as it was last known; its process id may
    /// already be reused.
    [[nodiscard]] virtual SubscriptionPtr
    addObserver(ApplicationEvent event, std::function<void(const RunningApplication&)> handler) = 0;

    /// Returns the process id of this program.
    [[nodiscard]] virtual ProcessId ownProcessIdentifier() = 0;
};

} // namespace tessarel
