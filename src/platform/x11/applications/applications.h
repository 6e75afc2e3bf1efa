#pragma once

#include "platform/x11/windows/client_windows.h"
#include "platform/xdg/installed_applications.h"
#include "ports/workspace_port.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace tessarel::x11 {

/// The applications on the desktop in this turn: processes that own managed windows.
///
/// A process that owns only panels and the like is not a regular application. Windows whose process is
/// unknown belong to no application.
///
/// The identifier is the application id that the window sets (`_GTK_APPLICATION_ID`,
/// `_KDE_NET_WM_DESKTOP_FILE`), else that of the installed application whose desktop entry matches the class
/// in WM_CLASS, else that class.
///
/// Identifiers come from the desktop entries as of the last `refresh`, because a hot key waits for them. Only
/// `displayName` looks for applications that were installed later.
class Applications {
public:
    /// `windows` must outlive this object. `entryFolders` are the folders that hold desktop entries.
    explicit Applications(ClientWindows& windows, std::vector<std::filesystem::path> entryFolders =
                                                      xdg::InstalledApplications::folders());

    /// Returns the owner of the active window, identified by that window; `std::nullopt` when no window is
    /// active or its process is unknown.
    [[nodiscard]] std::optional<RunningApplication> frontmost();
    /// Returns the application of process `pid`, identified by its front-most window; `std::nullopt` when the
    /// process owns no managed window.
    [[nodiscard]] std::optional<RunningApplication> ofProcess(ProcessId pid);
    /// Returns all applications, sorted by process id.
    [[nodiscard]] std::vector<RunningApplication> all();
    /// Returns the name of an installed application in the user's language, or `std::nullopt` when it is not
    /// installed.
    [[nodiscard]] std::optional<std::string> displayName(const std::string& identifier);

    /// Picks up applications that have been installed or removed.
    void refresh() { m_entries.refresh(); }

    /// Returns the identifier of the application whose desktop entry is `file`, or `std::nullopt` when the
    /// file does not describe an application.
    [[nodiscard]] std::optional<std::string> identifierOfEntry(const std::filesystem::path& file) const;

    /// Returns the application of process `pid`. `windows` are its windows, front to back; must not be empty.
    [[nodiscard]] RunningApplication ofWindows(ProcessId pid, const std::vector<xcb_window_t>& windows);

private:
    [[nodiscard]] std::optional<std::string> identifier(xcb_window_t window);
    [[nodiscard]] bool isForWork(xcb_window_t window);

    ClientWindows& m_windows;
    xdg::InstalledApplications m_entries;
};

} // namespace tessarel::x11
