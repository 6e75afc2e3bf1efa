// SPDX-License-Identifier: MIT

#pragma once

#include "ports/desktop/workspace_port.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tessarel::macos {

class Terminations;

/// The running applications as NSWorkspace lists them: those with a Dock icon, and those without one that may
/// have windows or a status item.
class MacWorkspace : public WorkspacePort {
public:
    [[nodiscard]] std::optional<RunningApplication> frontmostApplication() override;
    [[nodiscard]] std::optional<RunningApplication> runningApplication(ProcessId pid) override;
    [[nodiscard]] std::vector<RunningApplication> runningApplications() override;
    /// Returns the bundle's name as the Finder shows it, without ".app".
    [[nodiscard]] std::optional<std::string> displayName(const std::string& bundleIdentifier) override;
    /// An application that has no process at the moment is not reported, except when it has terminated and
    /// had a process before.
    [[nodiscard]] SubscriptionPtr
    addObserver(ApplicationEvent event, std::function<void(const RunningApplication&)> handler) override;
    [[nodiscard]] ProcessId ownProcessIdentifier() override;

private:
    /// Returns the records shared by all subscriptions to terminations; creates them for the first one.
    [[nodiscard]] std::shared_ptr<Terminations> terminations();

    std::weak_ptr<Terminations> m_terminations; // owned by the subscriptions
};

} // namespace tessarel::macos
