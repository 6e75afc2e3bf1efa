// SPDX-License-Identifier: MIT

#include "platform/wayland/application_watch.h"

#include <cerrno>
#include <csignal>
#include <set>
#include <utility>
#include <vector>

namespace tessarel::wayland {

namespace {

bool hasExited(ProcessId pid) {
    return ::kill(pid, 0) != 0 && errno == ESRCH;
}

} // namespace

ApplicationWatch::ApplicationWatch(Mirror& mirror, Applications& applications)
    : m_mirror(mirror), m_applications(applications), m_ready(mirror.onReady([this] { takeStock(); })),
      m_opened(mirror.onOpened([this](WindowId window) { handleOpened(window); })),
      m_closed(mirror.onClosed([this](WindowId window, const WindowState&) { handleClosed(window); })),
      m_activated(mirror.onActivated([this] { handleActivated(); })) {}

SubscriptionPtr ApplicationWatch::onApplication(ApplicationEvent event,
                                                std::function<void(const RunningApplication&)> handler) {
    return m_applicationHandlers[event].connect(std::move(handler));
}

SubscriptionPtr ApplicationWatch::onWindow(ProcessId pid, std::function<void(WindowId)> opened) {
    return m_windowHandlers.connect([pid, opened = std::move(opened)](ProcessId opener, WindowId window) {
        if (opener == pid)
            opened(window);
    });
}

SubscriptionPtr ApplicationWatch::onClosed(WindowId window, std::function<void()> closed) {
    return m_closedHandlers.connect([window, closed = std::move(closed)](WindowId gone) {
        if (gone == window)
            closed();
    });
}

/// Takes up the applications that run already, without reporting them.
void ApplicationWatch::takeStock() {
    for (const WindowId window : m_mirror.frontToBack()) {
        const WindowState& state = *m_mirror.find(window);
        if (state.pid > 0 && !m_running.contains(state.pid))
            m_running.emplace(state.pid, m_applications.ofWindow(state));
    }
    if (const WindowState* const active = m_mirror.find(m_mirror.active()))
        m_active = active->pid;
}

void ApplicationWatch::handleOpened(WindowId window) {
    const WindowState* const state = m_mirror.find(window);
    if (state == nullptr || state->pid <= 0)
        return;
    const ProcessId pid = state->pid;
    terminateEnded();
    if (m_running.contains(pid)) {
        m_windowHandlers.send(pid, window);
        return;
    }
    m_applications.refresh(); // it may have just been installed
    const RunningApplication application = m_applications.ofWindow(*state);
    m_running.emplace(pid, application);
    m_applicationHandlers[ApplicationEvent::Launched].send(application);
}

void ApplicationWatch::handleClosed(WindowId window) {
    m_closedHandlers.send(window);
    terminateEnded();
}

/// Reports an activation when the active window belongs to another process than before. When no window is
/// active, the last process stays the active one.
void ApplicationWatch::handleActivated() {
    const auto application = m_applications.frontmost();
    if (!application ||
        std::exchange(m_active, application->processIdentifier) == application->processIdentifier)
        return;
    m_applicationHandlers[ApplicationEvent::Activated].send(*application);
}

void ApplicationWatch::terminateEnded() {
    std::set<ProcessId> owners;
    for (const WindowId window : m_mirror.frontToBack())
        owners.insert(m_mirror.find(window)->pid);
    std::vector<RunningApplication> ended;
    std::erase_if(m_running, [&](const auto& entry) {
        const bool hasEnded = !owners.contains(entry.first) && hasExited(entry.first);
        if (hasEnded)
            ended.push_back(entry.second);
        return hasEnded;
    });
    for (const RunningApplication& application : ended)
        m_applicationHandlers[ApplicationEvent::Terminated].send(application);
}

} // namespace tessarel::wayland
