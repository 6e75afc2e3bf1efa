#include "platform/x11/applications/applications.h"

#include <algorithm>
#include <map>
#include <utility>

namespace tessarel::x11 {

Applications::Applications(ClientWindows& windows, std::vector<std::filesystem::path> entryFolders)
    : m_windows(windows), m_entries(std::move(entryFolders)) {}

/// Prefers the active window itself for the identifier. If that is a panel or the like, the front-most window
/// of the process is used instead.
std::optional<RunningApplication> Applications::frontmost() {
    const xcb_window_t active = m_windows.activeWindow();
    const auto pid = active == XCB_WINDOW_NONE ? std::nullopt : m_windows.pid(active);
    if (!pid)
        return std::nullopt;
    return ofWindows(*pid, isForWork(active) ? std::vector{active} : m_windows.windowsOf(*pid));
}

std::optional<RunningApplication> Applications::ofProcess(ProcessId pid) {
    const auto windows = m_windows.windowsOf(pid);
    return windows.empty() ? std::nullopt : std::optional(ofWindows(pid, windows));
}

std::vector<RunningApplication> Applications::all() {
    const auto windows = m_windows.frontToBack();
    m_windows.learnAll(windows);
    std::map<ProcessId, std::vector<xcb_window_t>> byProcess;
    for (const xcb_window_t window : windows) {
        if (const auto pid = m_windows.pid(window))
            byProcess[*pid].push_back(window);
    }
    std::vector<RunningApplication> applications;
    applications.reserve(byProcess.size());
    for (const auto& [pid, owned] : byProcess)
        applications.push_back(ofWindows(pid, owned));
    return applications;
}

std::optional<std::string> Applications::displayName(const std::string& identifier) {
    return m_entries.displayName(identifier);
}

std::optional<std::string> Applications::identifierOfEntry(const std::filesystem::path& file) const {
    return m_entries.identifierOfEntry(file);
}

RunningApplication Applications::ofWindows(ProcessId pid, const std::vector<xcb_window_t>& windows) {
    const bool isRegular = std::any_of(windows.begin(), windows.end(),
                                       [this](xcb_window_t window) { return isForWork(window); });
    return {pid, identifier(windows.front()), isRegular};
}

/// Returns the identifier of the window's application, or `std::nullopt` when the window has neither an
/// application id nor a class.
std::optional<std::string> Applications::identifier(xcb_window_t window) {
    const WindowTraits traits = m_windows.traits(window);
    if (traits.applicationId || !traits.windowClass)
        return traits.applicationId;
    const auto installed = m_entries.identifier(*traits.windowClass);
    return installed ? installed : traits.windowClass;
}

/// Returns whether a user works in the window, in contrast to docks, desktops, menus and the like.
bool Applications::isForWork(xcb_window_t window) {
    return m_windows.traits(window).type != WindowType::Other;
}

} // namespace tessarel::x11
