#pragma once

#include "ports/process_id.h"

#include <optional>
#include <string>

namespace tessarel {

/// A program that has windows on this desktop.
struct RunningApplication {
    ProcessId processIdentifier = 0;
    std::optional<std::string>
        bundleIdentifier; ///< the application's name for ever, e.g. "org.example.editor"

    bool operator==(const RunningApplication&) const = default;
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

    /// This program.
    [[nodiscard]] virtual ProcessId ownProcessIdentifier() = 0;
};

} // namespace tessarel
