#pragma once

#include "platform/x11/windows/client_windows.h"
#include "platform/xdg/installed_applications.h"
#include "ports/workspace_port.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace tessarel::x11 {

/// The programs on the desktop as they are in this turn: processes that own managed windows.
///
/// A process that owns nothing but panels and the like is not a regular application. Windows whose process
/// nobody knows belong to none. An application is called as its windows say, else like the installed one
/// whose class they carry, else like that class. No question but `displayName` looks for what has been
/// installed since `refresh`: a key press waits for the answer.
class Applications {
public:
    /// `entryFolders` is where applications are installed.
    explicit Applications(ClientWindows& windows, std::vector<std::filesystem::path> entryFolders =
                                                      xdg::InstalledApplications::folders());

    /// The owner of the active window, called as that window says.
    [[nodiscard]] std::optional<RunningApplication> frontmost();
    /// The application of process `pid`, called as its front-most window says.
    [[nodiscard]] std::optional<RunningApplication> ofProcess(ProcessId pid);
    [[nodiscard]] std::vector<RunningApplication> all();
    /// The name of the installed application called `identifier`, in the user's language.
    [[nodiscard]] std::optional<std::string> displayName(const std::string& identifier);

    /// Learns of applications that have been installed or removed.
    void refresh() { m_entries.refresh(); }

    /// The identifier of the application whose desktop entry is `file`; none when it is not one.
    [[nodiscard]] std::optional<std::string> identifierOfEntry(const std::filesystem::path& file) const;

    /// The application of process `pid` whose windows, front to back, are `windows`; there is at least one.
    [[nodiscard]] RunningApplication ofWindows(ProcessId pid, const std::vector<xcb_window_t>& windows);

private:
    [[nodiscard]] std::optional<std::string> identifier(xcb_window_t window);
    [[nodiscard]] bool isForWork(xcb_window_t window);

    ClientWindows& m_windows;
    xdg::InstalledApplications m_entries;
};

} // namespace tessarel::x11
