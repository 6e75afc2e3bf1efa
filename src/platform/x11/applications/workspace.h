// SPDX-License-Identifier: MIT

#pragma once

#include "platform/x11/applications/application_watch.h"
#include "platform/x11/applications/applications.h"
#include "ports/desktop/workspace_port.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tessarel::x11 {

/// The applications on the desktop, where an application is a process that owns managed windows.
class X11Workspace : public WorkspacePort {
public:
    /// Both references must outlive this object.
    X11Workspace(Applications& applications, ApplicationWatch& watch);

    /// Returns the owner of the active window, or `std::nullopt` when no window is active.
    [[nodiscard]] std::optional<RunningApplication> frontmostApplication() override;
    [[nodiscard]] std::optional<RunningApplication> runningApplication(ProcessId pid) override;
    [[nodiscard]] std::vector<RunningApplication> runningApplications() override;
    /// Returns the name from the application's desktop entry, in the user's language.
    [[nodiscard]] std::optional<std::string> displayName(const std::string& bundleIdentifier) override;
    [[nodiscard]] SubscriptionPtr
    addObserver(ApplicationEvent event, std::function<void(const RunningApplication&)> handler) override;
    [[nodiscard]] ProcessId ownProcessIdentifier() override;

private:
    Applications& m_applications;
    ApplicationWatch& m_watch;
};

} // namespace tessarel::x11
