// SPDX-License-Identifier: MIT

#pragma once

#include "platform/wayland/mirror.h"
#include "platform/xdg/applications/installed_applications.h"
#include "platform/xdg/applications/process_facts.h"
#include "platform/xdg/applications/program_names.h"
#include "ports/desktop/running_application.h"
#include "ports/main_queue_port.h"

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace tessarel::wayland {

/// The applications that the windows on the desktop belong to. An application is a process that owns windows.
class Applications {
public:
    /// Returns the facts about a process. Tests replace it.
    using FactsOf = std::function<xdg::ProcessFacts(ProcessId)>;

    /// The desktop entries are read in pieces on `queue`. All referenced objects must outlive this one.
    Applications(
        const Mirror& mirror, MainQueuePort& queue,
        std::vector<std::filesystem::path> entryFolders = xdg::InstalledApplications::folders(),
        FactsOf factsOf = [](ProcessId pid) { return xdg::processFacts(pid); });
    Applications(const Applications&) = delete;
    Applications& operator=(const Applications&) = delete;
    ~Applications() = default;

    /// Reads the desktop entries that have changed.
    void refresh();

    /// Returns the application of the window with the focus.
    [[nodiscard]] std::optional<RunningApplication> frontmost();
    /// Returns the application of the process' frontmost window; `std::nullopt` if it has no window.
    [[nodiscard]] std::optional<RunningApplication> ofProcess(ProcessId pid);
    [[nodiscard]] std::vector<RunningApplication> all();
    /// Returns the application of one window.
    [[nodiscard]] RunningApplication ofWindow(const WindowState& window);
    /// Returns the identifiers of the applications that have a window for work, without this program.
    [[nodiscard]] std::set<std::string> identifiersInUse();
    /// Returns the name from the application's desktop entry, in the user's language.
    [[nodiscard]] std::optional<std::string> displayName(const std::string& identifier);
    [[nodiscard]] std::optional<std::string> identifierOfEntry(const std::filesystem::path& file) const;

private:
    using Names = std::optional<xdg::ProgramNames>;

    void readSomeEntries();
    [[nodiscard]] RunningApplication ofWindows(const std::vector<const WindowState*>& windows);
    [[nodiscard]] const Names& names(const WindowState& window);
    [[nodiscard]] std::map<ProcessId, std::vector<const WindowState*>> windowsByProcess() const;

    const Mirror& m_mirror;
    MainQueuePort& m_queue;
    xdg::InstalledApplications m_entries;
    FactsOf m_factsOf;
    std::map<std::pair<ProcessId, xdg::WindowNames>, Names> m_names;
    SubscriptionPtr m_furtherReading;
};

} // namespace tessarel::wayland
