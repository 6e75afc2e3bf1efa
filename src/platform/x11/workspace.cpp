#include "platform/x11/workspace.h"

#include <unistd.h>

namespace tessarel::x11 {

X11Workspace::X11Workspace(ClientWindows& windows) : m_windows(windows) {}

std::optional<RunningApplication> X11Workspace::frontmostApplication() {
    const xcb_window_t active = m_windows.activeWindow();
    const auto pid = active == XCB_WINDOW_NONE ? std::nullopt : m_windows.pid(active);
    if (!pid)
        return std::nullopt;
    return RunningApplication{*pid, m_windows.traits(active).applicationId};
}

std::optional<RunningApplication> X11Workspace::runningApplication(ProcessId pid) {
    const auto windows = m_windows.windowsOf(pid);
    if (windows.empty())
        return std::nullopt;
    return RunningApplication{pid, m_windows.traits(windows.front()).applicationId};
}

ProcessId X11Workspace::ownProcessIdentifier() {
    return getpid();
}

} // namespace tessarel::x11
