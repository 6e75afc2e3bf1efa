// SPDX-License-Identifier: MIT

#pragma once

#include "ports/desktop/process_id.h"

#include <optional>
#include <string>
#include <vector>

namespace tessarel {

/// An application that is running on this desktop.
struct RunningApplication {
    ProcessId processIdentifier = 0;
    /// Permanent identifier of the application, such as "org.example.editor".
    std::optional<std::string> bundleIdentifier;
    /// Whether the user works in its windows; false for panels and background helpers.
    bool isRegular = true;
    /// Further names under which the settings may know the application, such as the identifier that an
    /// earlier version gave it, the most specific first. Empty where the identifier is the only name.
    std::vector<std::string> otherNames = {};
    /// False if other windows of the process belong to other applications (see `AccessibilityPort::owner`).
    /// Only `WorkspacePort::runningApplication` and `runningApplications` find that out.
    bool ownsWholeProcess = true;

    bool operator==(const RunningApplication&) const = default;
};

} // namespace tessarel
