// SPDX-License-Identifier: MIT

#include "platform/wayland/applications.h"

#include <algorithm>
#include <cstddef>
#include <unistd.h>

namespace tessarel::wayland {

namespace {

/// Far more than windows with different names between two refreshes; then all are forgotten.
constexpr std::size_t kMostNames = 1000;

/// How many desktop entries are read at a time, in about a millisecond.
constexpr std::size_t kEntriesAtATime = 100;

bool isForWork(const WindowState& window) {
    return window.kind != WindowKind::Other;
}

} // namespace

Applications::Applications(const Mirror& mirror, MainQueuePort& queue,
                           std::vector<std::filesystem::path> entryFolders, FactsOf factsOf)
    : m_mirror(mirror), m_queue(queue), m_entries(std::move(entryFolders)), m_factsOf(std::move(factsOf)) {
    // Later, so that the program is ready for hot keys first.
    m_furtherReading = queue.async([this] {
        m_entries.beginRefresh();
        readSomeEntries();
    });
}

void Applications::refresh() {
    m_entries.beginRefresh();
    if (!m_furtherReading)
        readSomeEntries();
}

/// Reads the next piece, and schedules the one after it.
void Applications::readSomeEntries() {
    const bool isMore = m_entries.readSome(kEntriesAtATime);
    m_furtherReading = isMore ? m_queue.async([this] { readSomeEntries(); }) : nullptr;
    m_names.clear();
}

std::optional<RunningApplication> Applications::frontmost() {
    const WindowState* const active = m_mirror.find(m_mirror.active());
    if (active == nullptr)
        return std::nullopt;
    return isForWork(*active) ? std::optional(ofWindow(*active)) : ofProcess(active->pid);
}

std::optional<RunningApplication> Applications::ofProcess(ProcessId pid) {
    const auto all = windowsByProcess();
    const auto own = all.find(pid);
    return own == all.end() ? std::nullopt : std::optional(ofWindows(own->second));
}

std::vector<RunningApplication> Applications::all() {
    std::vector<RunningApplication> applications;
    for (const auto& [pid, windows] : windowsByProcess())
        applications.push_back(ofWindows(windows));
    return applications;
}

RunningApplication Applications::ofWindow(const WindowState& window) {
    return ofWindows({&window});
}

std::set<std::string> Applications::identifiersInUse() {
    std::set<std::string> identifiers;
    for (const WindowId id : m_mirror.frontToBack()) {
        const WindowState& window = *m_mirror.find(id);
        if (window.pid == ::getpid() || !isForWork(window))
            continue;
        if (const Names& known = names(window))
            identifiers.insert(known->identifier);
    }
    return identifiers;
}

std::optional<std::string> Applications::displayName(const std::string& identifier) {
    refresh(); // it may have just been installed
    return m_entries.displayName(identifier);
}

std::optional<std::string> Applications::identifierOfEntry(const std::filesystem::path& file) const {
    return m_entries.identifierOfEntry(file);
}

/// Returns the windows of each process, front to back.
std::map<ProcessId, std::vector<const WindowState*>> Applications::windowsByProcess() const {
    std::map<ProcessId, std::vector<const WindowState*>> all;
    for (const WindowId id : m_mirror.frontToBack()) {
        const WindowState* const window = m_mirror.find(id);
        if (window->pid > 0)
            all[window->pid].push_back(window);
    }
    return all;
}

/// Returns the application of windows of one process, front to back.
RunningApplication Applications::ofWindows(const std::vector<const WindowState*>& windows) {
    const Names front = names(*windows.front());
    RunningApplication application{.processIdentifier = windows.front()->pid, .bundleIdentifier = {}};
    application.isRegular = std::any_of(windows.begin(), windows.end(),
                                        [](const WindowState* window) { return isForWork(*window); });
    if (front) {
        application.bundleIdentifier = front->identifier;
        application.otherNames = front->others;
    }
    application.ownsWholeProcess = std::all_of(
        windows.begin(), windows.end(), [&](const WindowState* window) { return names(*window) == front; });
    return application;
}

/// Returns the names of the window's application, or `std::nullopt` when nothing is known of it.
const Applications::Names& Applications::names(const WindowState& window) {
    xdg::WindowNames said;
    if (!window.applicationId.empty())
        said.announced = {window.applicationId};
    said.instance = said.windowClass = window.windowClass;
    if (m_names.size() > kMostNames)
        m_names.clear();
    const auto [known, isNew] = m_names.try_emplace({window.pid, said});
    if (isNew)
        known->second = xdg::programNames(m_entries, said, [&] { return m_factsOf(window.pid); });
    return known->second;
}

} // namespace tessarel::wayland
