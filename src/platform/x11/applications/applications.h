// SPDX-License-Identifier: MIT

#pragma once

#include "platform/x11/windows/client_windows.h"
#include "platform/xdg/applications/installed_applications.h"
#include "platform/xdg/applications/process_facts.h"
#include "platform/xdg/applications/program_names.h"
#include "ports/desktop/workspace_port.h"
#include "ports/main_queue_port.h"

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <vector>

namespace tessarel::x11 {

/// The applications on the desktop in this turn: processes that own managed windows.
///
/// A process that owns only panels and the like is not a regular application. Windows whose process is
/// unknown belong to no application.
///
/// `xdg::programNames` describes how a window's application is identified. A process may own windows of
/// several applications. What /proc shows of a process counts only if its windows are those of a client on
/// this machine.
///
/// Identifiers come from the desktop entries and processes as of the last `refresh`, because a hot key waits
/// for them.
class Applications {
public:
    /// Returns what is known of a process, like `xdg::processFacts`. Tests replace it.
    using FactsOf = std::function<xdg::ProcessFacts(ProcessId)>;

    /// `windows` must outlive this object. `entryFolders` are the folders that hold desktop entries.
    explicit Applications(
        ClientWindows& windows,
        std::vector<std::filesystem::path> entryFolders = xdg::InstalledApplications::folders(),
        FactsOf factsOf = [](ProcessId pid) { return xdg::processFacts(pid); });

    /// Returns the owner of the active window, identified by that window; `std::nullopt` when no window is
    /// active or its process is unknown.
    [[nodiscard]] std::optional<RunningApplication> frontmost();
    /// Returns the application of process `pid`, identified by its front-most window; `std::nullopt` when the
    /// process owns no managed window.
    [[nodiscard]] std::optional<RunningApplication> ofProcess(ProcessId pid);
    /// Returns all applications, sorted by process id.
    [[nodiscard]] std::vector<RunningApplication> all();
    /// Returns the identifiers of all applications with a window that a user works in, leaving out this
    /// program. A process may contribute several.
    [[nodiscard]] std::set<std::string> identifiersInUse();
    /// Returns the name of an installed application in the user's language, or `std::nullopt` when it is not
    /// installed.
    [[nodiscard]] std::optional<std::string> displayName(const std::string& identifier);

    /// Picks up applications that have been installed or removed, and looks at the processes again.
    void refresh();
    /// From now on reads desktop entries in pieces, between other work of `queue`, which must outlive this
    /// object. Until all have been read, windows are identified by what was read before, and after the start
    /// by the entries that have been read so far.
    void readEntriesOn(MainQueuePort& queue) { m_queue = &queue; }

    /// Returns the identifier of the application whose desktop entry is `file`, or `std::nullopt` when the
    /// file does not describe an application.
    [[nodiscard]] std::optional<std::string> identifierOfEntry(const std::filesystem::path& file) const;

    /// Returns the application of process `pid`. `windows` are its windows, front to back; must not be empty.
    /// The first one identifies it.
    [[nodiscard]] RunningApplication ofWindows(ProcessId pid, const std::vector<xcb_window_t>& windows);

private:
    using Names = std::optional<xdg::ProgramNames>;

    [[nodiscard]] const Names& names(ProcessId pid, xcb_window_t window);
    [[nodiscard]] bool isForWork(xcb_window_t window);
    void refreshEntries();
    void readSomeEntries();

    ClientWindows& m_windows;
    xdg::InstalledApplications m_entries;
    FactsOf m_factsOf;
    std::map<std::tuple<ProcessId, bool, xdg::WindowNames>, Names> m_names; ///< as of the last `refresh`
    MainQueuePort* m_queue = nullptr;
    SubscriptionPtr m_furtherReading; ///< null while no entries remain to be read
};

} // namespace tessarel::x11
