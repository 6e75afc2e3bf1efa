// SPDX-License-Identifier: MIT

#include "platform/x11/applications/application_watch.h"

#include "platform/x11/server/property.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace tessarel::x11 {

/// The differences that an update has found, in the order in which they are reported.
struct ApplicationWatch::Changes {
    std::vector<xcb_window_t> closed;
    std::vector<RunningApplication> terminated;
    std::vector<RunningApplication> launched;
    std::vector<xcb_window_t> opened; ///< by processes that were launched before this update
};

ApplicationWatch::ApplicationWatch(Connection& connection, ClientWindows& windows, Applications& applications,
                                   StartOf startOf)
    : m_connection(connection), m_windows(windows), m_applications(applications),
      m_startOf(std::move(startOf)),
      m_observer(connection.onRead([this](const Connection::Event& event) { note(event); })),
      m_handler(connection.onEvent([this](const Connection::Event& event) { follow(event); })) {}

SubscriptionPtr ApplicationWatch::onApplication(ApplicationEvent event,
                                                std::function<void(const RunningApplication&)> handler) {
    begin();
    return m_applicationHandlers[event].connect(std::move(handler));
}

SubscriptionPtr ApplicationWatch::onWindow(ProcessId pid, std::function<void(xcb_window_t)> opened) {
    begin();
    return m_windowHandlers.connect([pid, opened = std::move(opened)](ProcessId opener, xcb_window_t window) {
        if (opener == pid)
            opened(window);
    });
}

SubscriptionPtr ApplicationWatch::onClosed(xcb_window_t window, std::function<void()> closed) {
    begin();
    return m_closedHandlers.connect([window, closed = std::move(closed)](xcb_window_t gone) {
        if (gone == window)
            closed();
    });
}

/// Takes stock on the first subscription. What exists at that time is not reported as new.
void ApplicationWatch::begin() {
    if (std::exchange(m_isWanted, true))
        return;
    (void)update();
    const auto active = m_known.find(m_windows.activeWindow());
    m_active = active == m_known.end() ? 0 : active->second.pid;
}

/// Notes a changed client list as soon as the event is read; `follow` compares the lists when it is
/// delivered.
void ApplicationWatch::note(const Connection::Event& event) {
    if (changedProperty(event, m_connection.root()) == m_connection.atom(Atom::NetClientList))
        m_isOutdated = true;
}

/// Reports the changes. Some window managers set `_NET_ACTIVE_WINDOW` before they add the window to
/// `_NET_CLIENT_LIST`; it is treated as inactive until it is listed, so a list change is followed up, too.
void ApplicationWatch::follow(const Connection::Event& event) {
    const auto changed = changedProperty(event, m_connection.root());
    if (!m_isWanted || !changed)
        return;
    if (m_isOutdated)
        tell(update());
    if (changed == m_connection.atom(Atom::NetActiveWindow) ||
        changed == m_connection.atom(Atom::NetClientList))
        followActive();
}

/// Reports an activation when the active window belongs to another process than before. When no window is
/// active, the last process stays the active one, so returning to it is not reported.
void ApplicationWatch::followActive() {
    const auto application = m_applications.frontmost();
    if (!application || application->processIdentifier == m_active)
        return;
    m_active = application->processIdentifier;
    m_applicationHandlers[ApplicationEvent::Activated].send(*application);
}

/// Compares the client list with the known windows and updates the records.
ApplicationWatch::Changes ApplicationWatch::update() {
    m_isOutdated = false;
    const std::vector<xcb_window_t> listed = m_windows.managed();
    Changes changes;
    changes.closed = takeClosed(listed);
    const std::vector<xcb_window_t> opened = takeOpened(listed);
    if (!opened.empty()) // their application may have just been installed
        m_applications.refresh();
    sortIn(opened, changes);
    terminateEnded(changes);
    return changes;
}

/// Removes and returns the windows that have been closed. A window that left the list but is still mapped has
/// not been closed: the window manager has exited.
std::vector<xcb_window_t> ApplicationWatch::takeClosed(const std::vector<xcb_window_t>& listed) {
    const std::unordered_set<xcb_window_t> present(listed.begin(), listed.end());
    std::vector<std::pair<xcb_window_t, xcb_get_window_attributes_cookie_t>> missing;
    for (auto& [window, known] : m_known) {
        if (present.contains(window))
            continue;
        known.isListed = false;
        missing.emplace_back(window, xcb_get_window_attributes(m_connection.xcb(), window));
    }
    std::vector<xcb_window_t> closed;
    for (const auto& [window, cookie] : missing) {
        const auto attributes = m_connection.reply<xcb_get_window_attributes_reply>(cookie);
        if (!attributes || attributes->map_state == XCB_MAP_STATE_UNMAPPED)
            closed.push_back(window);
    }
    for (const xcb_window_t window : closed)
        m_known.erase(window);
    return closed;
}

/// Returns the processes that have exited since they were launched. They may still own windows, if a child
/// process keeps their connection open.
std::unordered_set<ProcessId> ApplicationWatch::ended() const {
    std::unordered_set<ProcessId> ended;
    for (const auto& [pid, process] : m_processes) {
        if (process.start && m_startOf(pid) != process.start)
            ended.insert(pid);
    }
    return ended;
}

/// Returns the listed windows that are new, and records their owners.
///
/// Window ids are reused, even if the old window was never seen to close. The owner is therefore read again
/// for every window whose process has exited, and for every window without a known owner, which may have been
/// closed before it could be read.
std::vector<xcb_window_t> ApplicationWatch::takeOpened(const std::vector<xcb_window_t>& listed) {
    std::vector<xcb_window_t> unsure;
    const auto hasEnded = ended();
    std::copy_if(listed.begin(), listed.end(), std::back_inserter(unsure), [&](xcb_window_t window) {
        const auto known = m_known.find(window);
        return known == m_known.end() || !known->second.isListed || known->second.pid == 0 ||
               hasEnded.contains(known->second.pid);
    });
    m_windows.learnAll(unsure);
    std::erase_if(unsure, [this](xcb_window_t window) {
        const ProcessId pid = m_windows.pid(window).value_or(0);
        const auto [known, isNew] = m_known.try_emplace(window);
        const bool isSame = !isNew && known->second.pid == pid; // else the id has been reused
        known->second = {pid, true};
        return isSame || pid == 0;
    });
    return unsure;
}

/// Sorts new windows into launches and further windows of running processes.
void ApplicationWatch::sortIn(const std::vector<xcb_window_t>& opened, Changes& changes) {
    std::map<ProcessId, std::vector<xcb_window_t>> byProcess;
    for (const xcb_window_t window : opened)
        byProcess[m_known[window].pid].push_back(window);
    for (const auto& [pid, windows] : byProcess) {
        const auto running = m_processes.find(pid);
        const auto start = m_startOf(pid);
        // A process without a start time has exited or is invisible from here. It was not replaced by another
        // one with the same id; a child process goes on with its windows.
        if (running != m_processes.end() && (!start || start == running->second.start)) {
            changes.opened.insert(changes.opened.end(), windows.begin(), windows.end());
            continue;
        }
        if (running != m_processes.end())
            changes.terminated.push_back(running->second.application);
        launch(pid, windows, changes);
    }
}

/// Records a process as running and adds it to the launches.
void ApplicationWatch::launch(ProcessId pid, const std::vector<xcb_window_t>& windows, Changes& changes) {
    const RunningApplication application = m_applications.ofWindows(pid, windows);
    m_processes.insert_or_assign(pid, Process{application, m_startOf(pid)});
    changes.launched.push_back(application);
}

/// Removes processes that own no window any more and have exited, and adds them to the terminations.
void ApplicationWatch::terminateEnded(Changes& changes) {
    std::unordered_set<ProcessId> owners;
    for (const auto& [window, known] : m_known)
        owners.insert(known.pid);
    std::erase_if(m_processes, [&](const auto& entry) {
        const auto& [pid, process] = entry;
        const bool hasEnded = !owners.contains(pid) && (!process.start || m_startOf(pid) != process.start);
        if (hasEnded)
            changes.terminated.push_back(process.application);
        return hasEnded;
    });
}

/// Calls the handlers. A handler may cause the records to change, so the owner of each window is looked up
/// anew.
void ApplicationWatch::tell(const Changes& changes) {
    for (const xcb_window_t window : changes.closed)
        m_closedHandlers.send(window);
    for (const RunningApplication& application : changes.terminated)
        m_applicationHandlers[ApplicationEvent::Terminated].send(application);
    for (const RunningApplication& application : changes.launched)
        m_applicationHandlers[ApplicationEvent::Launched].send(application);
    for (const xcb_window_t window : changes.opened) {
        if (const auto known = m_known.find(window); known != m_known.end())
            m_windowHandlers.send(known->second.pid, window);
    }
}

} // namespace tessarel::x11
