#pragma once

#include "ports/workspace_port.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tessarel::macos {

class Terminations;

/// The programs that the system's workspace knows of: those with a place in the Dock, and others with
/// windows or a status item.
class MacWorkspace : public WorkspacePort {
public:
    [[nodiscard]] std::optional<RunningApplication> frontmostApplication() override;
    [[nodiscard]] std::optional<RunningApplication> runningApplication(ProcessId pid) override;
    [[nodiscard]] std::vector<RunningApplication> runningApplications() override;
    [[nodiscard]] std::optional<std::string> displayName(const std::string& bundleIdentifier) override;
    /// An application that has no process at the moment is not told of, unless it has ended and had one
    /// before.
    [[nodiscard]] SubscriptionPtr
    addObserver(ApplicationEvent event, std::function<void(const RunningApplication&)> handler) override;
    [[nodiscard]] ProcessId ownProcessIdentifier() override;

private:
    [[nodiscard]] std::shared_ptr<Terminations> terminations();

    std::weak_ptr<Terminations> m_terminations; // kept by the subscriptions
};

} // namespace tessarel::macos
