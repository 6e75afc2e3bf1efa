#pragma once

#include "ports/workspace_port.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tessarel::macos {

/// The programs that the system's workspace knows of: those with a place in the Dock, and others with
/// windows or a status item.
class MacWorkspace : public WorkspacePort {
public:
    [[nodiscard]] std::optional<RunningApplication> frontmostApplication() override;
    [[nodiscard]] std::optional<RunningApplication> runningApplication(ProcessId pid) override;
    [[nodiscard]] std::vector<RunningApplication> runningApplications() override;
    [[nodiscard]] std::optional<std::string> displayName(const std::string& bundleIdentifier) override;
    /// An application that has no process at the moment is not told of.
    [[nodiscard]] SubscriptionPtr
    addObserver(ApplicationEvent event, std::function<void(const RunningApplication&)> handler) override;
    [[nodiscard]] ProcessId ownProcessIdentifier() override;
};

} // namespace tessarel::macos
