#pragma once

#include "platform/x11/client_windows.h"
#include "ports/workspace_port.h"

#include <optional>

namespace tessarel::x11 {

/// The programs on the desktop: processes that own managed windows.
class X11Workspace : public WorkspacePort {
public:
    explicit X11Workspace(ClientWindows& windows);

    /// The owner of the active window.
    [[nodiscard]] std::optional<RunningApplication> frontmostApplication() override;
    [[nodiscard]] std::optional<RunningApplication> runningApplication(ProcessId pid) override;
    [[nodiscard]] ProcessId ownProcessIdentifier() override;

private:
    ClientWindows& m_windows;
};

} // namespace tessarel::x11
