#pragma once

#include "platform/x11/windows/application_watch.h"
#include "platform/x11/windows/applications.h"
#include "ports/workspace_port.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tessarel::x11 {

/// The programs on the desktop: processes that own managed windows.
class X11Workspace : public WorkspacePort {
public:
    X11Workspace(Applications& applications, ApplicationWatch& watch);

    /// The owner of the active window.
    [[nodiscard]] std::optional<RunningApplication> frontmostApplication() override;
    [[nodiscard]] std::optional<RunningApplication> runningApplication(ProcessId pid) override;
    [[nodiscard]] std::vector<RunningApplication> runningApplications() override;
    /// The name that its desktop entry gives it in the user's language.
    [[nodiscard]] std::optional<std::string> displayName(const std::string& bundleIdentifier) override;
    [[nodiscard]] SubscriptionPtr
    addObserver(ApplicationEvent event, std::function<void(const RunningApplication&)> handler) override;
    [[nodiscard]] ProcessId ownProcessIdentifier() override;

private:
    Applications& m_applications;
    ApplicationWatch& m_watch;
};

} // namespace tessarel::x11
