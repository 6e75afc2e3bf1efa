// SPDX-License-Identifier: MIT

#include "platform/x11/applications/workspace.h"

#include <unistd.h>
#include <utility>

namespace tessarel::x11 {

X11Workspace::X11Workspace(Applications& applications, ApplicationWatch& watch)
    : m_applications(applications), m_watch(watch) {}

std::optional<RunningApplication> X11Workspace::frontmostApplication() {
    return m_applications.frontmost();
}

std::optional<RunningApplication> X11Workspace::runningApplication(ProcessId pid) {
    return m_applications.ofProcess(pid);
}

std::vector<RunningApplication> X11Workspace::runningApplications() {
    return m_applications.all();
}

std::optional<std::string> X11Workspace::displayName(const std::string& bundleIdentifier) {
    return m_applications.displayName(bundleIdentifier);
}

SubscriptionPtr X11Workspace::addObserver(ApplicationEvent event,
                                          std::function<void(const RunningApplication&)> handler) {
    return m_watch.onApplication(event, std::move(handler));
}

ProcessId X11Workspace::ownProcessIdentifier() {
    return getpid();
}

} // namespace tessarel::x11
