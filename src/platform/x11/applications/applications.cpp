// SPDX-License-Identifier: MIT

#include "platform/x11/applications/applications.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <unistd.h>
#include <utility>

namespace tessarel::x11 {

namespace {

/// Far more than windows with different names between two refreshes; then all are forgotten.
constexpr std::size_t kMostNames = 1000;

/// How many desktop entries are read at a time, in about a millisecond. Most desktops have hardly more.
constexpr std::size_t kEntriesAtATime = 100;

/// Returns whether `host` is this machine. Either name may be without its domain.
bool isThisMachine(const std::string& host) {
    std::array<char, 256> buffer{};
    (void)::gethostname(buffer.data(), buffer.size() - 1);
    const std::string own = buffer.data();
    return host.empty() || host == own || host.starts_with(own + ".") || own.starts_with(host + ".");
}

} // namespace

Applications::Applications(ClientWindows& windows, std::vector<std::filesystem::path> entryFolders,
                           FactsOf factsOf)
    : m_windows(windows), m_entries(std::move(entryFolders)), m_factsOf(std::move(factsOf)) {}

void Applications::refresh() {
    refreshEntries();
    m_names.clear();
}

void Applications::refreshEntries() {
    if (m_queue == nullptr) {
        m_entries.refresh();
        return;
    }
    m_entries.beginRefresh();
    if (!m_furtherReading)
        readSomeEntries();
}

/// Reads the next piece, and schedules the one after it.
void Applications::readSomeEntries() {
    const bool isMore = m_entries.readSome(kEntriesAtATime);
    m_furtherReading = isMore ? m_queue->async([this] { readSomeEntries(); }) : nullptr;
    m_names.clear();
}

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

std::set<std::string> Applications::identifiersInUse() {
    const auto windows = m_windows.frontToBack();
    m_windows.learnAll(windows);
    std::set<std::string> identifiers;
    for (const xcb_window_t window : windows) {
        const auto pid = m_windows.pid(window);
        if (!pid || *pid == ::getpid() || !isForWork(window))
            continue;
        if (const Names& known = names(*pid, window))
            identifiers.insert(known->identifier);
    }
    return identifiers;
}

std::optional<std::string> Applications::displayName(const std::string& identifier) {
    refreshEntries();
    return m_entries.displayName(identifier);
}

std::optional<std::string> Applications::identifierOfEntry(const std::filesystem::path& file) const {
    return m_entries.identifierOfEntry(file);
}

RunningApplication Applications::ofWindows(ProcessId pid, const std::vector<xcb_window_t>& windows) {
    const Names front = names(pid, windows.front());
    RunningApplication application{.processIdentifier = pid, .bundleIdentifier = {}};
    application.isRegular = std::any_of(windows.begin(), windows.end(),
                                        [this](xcb_window_t window) { return isForWork(window); });
    if (front) {
        application.bundleIdentifier = front->identifier;
        application.otherNames = front->others;
    }
    application.ownsWholeProcess = std::all_of(
        windows.begin(), windows.end(), [&](xcb_window_t window) { return names(pid, window) == front; });
    return application;
}

/// Returns the names of the window's application, or `std::nullopt` when nothing is known of it.
const Applications::Names& Applications::names(ProcessId pid, xcb_window_t window) {
    if (!m_entries.hasBegun())
        refreshEntries();
    const WindowTraits traits = m_windows.traits(window);
    const bool isHere = isThisMachine(traits.clientMachine);
    if (m_names.size() > kMostNames)
        m_names.clear();
    const auto [known, isNew] = m_names.try_emplace({pid, isHere, traits.names});
    if (isNew)
        known->second = xdg::programNames(m_entries, traits.names,
                                          [&] { return isHere ? m_factsOf(pid) : xdg::ProcessFacts(); });
    return known->second;
}

/// Returns whether a user works in the window, in contrast to docks, desktops, menus and the like.
bool Applications::isForWork(xcb_window_t window) {
    return m_windows.traits(window).type != WindowType::Other;
}

} // namespace tessarel::x11
