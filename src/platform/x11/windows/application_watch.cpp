#include "platform/x11/windows/application_watch.h"

#include "platform/x11/server/property.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace tessarel::x11 {

/// What an update has found.
struct ApplicationWatch::Changes {
    std::vector<xcb_window_t> closed;
    std::vector<RunningApplication> terminated;
    std::vector<RunningApplication> launched;
    std::vector<xcb_window_t> opened; ///< by processes that ran before
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
    return m_applicationHandlers[event].add(std::move(handler));
}

SubscriptionPtr ApplicationWatch::onWindow(ProcessId pid, std::function<void(xcb_window_t)> opened) {
    begin();
    return m_windowHandlers.add([pid, opened = std::move(opened)](ProcessId opener, xcb_window_t window) {
        if (opener == pid)
            opened(window);
    });
}

SubscriptionPtr ApplicationWatch::onClosed(xcb_window_t window, std::function<void()> closed) {
    begin();
    return m_closedHandlers.add([window, closed = std::move(closed)](xcb_window_t gone) {
        if (gone == window)
            closed();
    });
}

/// What is there already is nothing new.
void ApplicationWatch::begin() {
    if (std::exchange(m_isWanted, true))
        return;
    (void)update();
    const auto active = m_known.find(m_windows.activeWindow());
    m_active = active == m_known.end() ? 0 : active->second.pid;
}

void ApplicationWatch::note(const Connection::Event& event) {
    if (changedProperty(event, m_connection.root()) == m_connection.atom(Atom::NetClientList))
        m_isOutdated = true;
}

/// Managers may name a window as the active one before they list it: nobody is in front of it until then.
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

void ApplicationWatch::followActive() {
    const auto application = m_applications.frontmost();
    if (!application || application->processIdentifier == m_active)
        return;
    m_active = application->processIdentifier;
    m_applicationHandlers[ApplicationEvent::Activated].call(*application);
}

ApplicationWatch::Changes ApplicationWatch::update() {
    m_isOutdated = false;
    const std::vector<xcb_window_t> listed = m_windows.managed();
    Changes changes;
    changes.closed = takeClosed(listed);
    const std::vector<xcb_window_t> opened = takeOpened(listed);
    if (!opened.empty()) // by what may have been installed a moment ago
        m_applications.refresh();
    sortIn(opened, changes);
    terminateEnded(changes);
    return changes;
}

/// A window that is not listed any more has been closed, unless it is still to be seen: then it was the
/// manager that has gone.
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

/// The processes that have ended since they were launched, though a child may go on with their windows.
std::unordered_set<ProcessId> ApplicationWatch::ended() const {
    std::unordered_set<ProcessId> ended;
    for (const auto& [pid, process] : m_processes) {
        if (process.start && m_startOf(pid) != process.start)
            ended.insert(pid);
    }
    return ended;
}

/// The listed windows that are new, and notes whose they are. The number of a window whose process has ended
/// may be another's by now, even if it has never been seen to go; so may that of a window of nobody, which
/// may have gone before it was asked.
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
        const bool isSame = !isNew && known->second.pid == pid; // else a number that has been used again
        known->second = {pid, true};
        return isSame || pid == 0;
    });
    return unsure;
}

void ApplicationWatch::sortIn(const std::vector<xcb_window_t>& opened, Changes& changes) {
    std::map<ProcessId, std::vector<xcb_window_t>> byProcess;
    for (const xcb_window_t window : opened)
        byProcess[m_known[window].pid].push_back(window);
    for (const auto& [pid, windows] : byProcess) {
        const auto running = m_processes.find(pid);
        const auto start = m_startOf(pid);
        // One that cannot be seen has not been replaced either: a child of it goes on.
        if (running != m_processes.end() && (!start || start == running->second.start)) {
            changes.opened.insert(changes.opened.end(), windows.begin(), windows.end());
            continue;
        }
        if (running != m_processes.end())
            changes.terminated.push_back(running->second.application);
        launch(pid, windows, changes);
    }
}

void ApplicationWatch::launch(ProcessId pid, const std::vector<xcb_window_t>& windows, Changes& changes) {
    const RunningApplication application = m_applications.ofWindows(pid, windows);
    m_processes.insert_or_assign(pid, Process{application, m_startOf(pid)});
    changes.launched.push_back(application);
}

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

void ApplicationWatch::tell(const Changes& changes) {
    for (const xcb_window_t window : changes.closed)
        m_closedHandlers.call(window);
    for (const RunningApplication& application : changes.terminated)
        m_applicationHandlers[ApplicationEvent::Terminated].call(application);
    for (const RunningApplication& application : changes.launched)
        m_applicationHandlers[ApplicationEvent::Launched].call(application);
    for (const xcb_window_t window : changes.opened) {
        if (const auto known = m_known.find(window); known != m_known.end())
            m_windowHandlers.call(known->second.pid, window);
    }
}

} // namespace tessarel::x11
