#pragma once

#include "model/subscription.h"
#include "ports/process_id.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tessarel {

/// A program that has windows on this desktop.
struct RunningApplication {
    ProcessId processIdentifier = 0;
    std::optional<std::string>
        bundleIdentifier; ///< the application's name for ever, e.g. "org.example.editor"
    /// It has windows that a user works in, unlike panels and helpers in the background.
    bool isRegular = true;

    bool operator==(const RunningApplication&) const = default;
};

/// What happens to an application as a whole.
enum class ApplicationEvent {
    Launched,  ///< it has come to run; what ran before is not launched again
    Activated, ///< it has come to the front
    Terminated ///< its process has ended, or this has been noticed
};

/// The programs running on this desktop.
class WorkspacePort {
public:
    virtual ~WorkspacePort() = default;

    /// The application whose window has the keyboard focus. Where an application can be in front without a
    /// window, that one; otherwise none when no window has the focus.
    [[nodiscard]] virtual std::optional<RunningApplication> frontmostApplication() = 0;

    /// The application of process `pid`; none when it has ended or is no application.
    [[nodiscard]] virtual std::optional<RunningApplication> runningApplication(ProcessId pid) = 0;

    /// Every application that runs, in no particular order. This program may be among them.
    [[nodiscard]] virtual std::vector<RunningApplication> runningApplications() = 0;

    /// What the user sees as the name of the installed application called `bundleIdentifier`; none when none
    /// is installed.
    [[nodiscard]] virtual std::optional<std::string> displayName(const std::string& bundleIdentifier) = 0;

    /// Calls `handler` with the application that each `event` is about, on the main thread, until the answer
    /// ends. An application that has terminated is told as it was last known; its process id may be another
    /// one's by then.
    [[nodiscard]] virtual SubscriptionPtr
    addObserver(ApplicationEvent event, std::function<void(const RunningApplication&)> handler) = 0;

    /// This program.
    [[nodiscard]] virtual ProcessId ownProcessIdentifier() = 0;
};

} // namespace tessarel
