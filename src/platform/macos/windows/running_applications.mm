// SPDX-License-Identifier: MIT

#include "platform/macos/windows/running_applications.h"

#include "model/call_on_end.h"
#include "platform/macos/objects/callback_edge.h"
#include "platform/macos/objects/conversions.h"

#include <algorithm>
#include <utility>

namespace tessarel::macos {

std::optional<RunningApplication> runningFrom(NSRunningApplication* application) {
    const pid_t pid = [application processIdentifier]; // 0 for nil, -1 for an application without a process
    if (pid <= 0)
        return {};
    return RunningApplication{pid, optionalStringFrom([application bundleIdentifier]),
                              [application activationPolicy] == NSApplicationActivationPolicyRegular};
}

NSRunningApplication* subjectOf(NSNotification* notification) {
    return as<NSRunningApplication>([[notification userInfo] objectForKey:NSWorkspaceApplicationKey]);
}

Terminations::Terminations()
    : m_launched([[NSWorkspace sharedWorkspace] notificationCenter],
                 NSWorkspaceDidLaunchApplicationNotification,
                 [this](NSNotification* notification) { note(subjectOf(notification)); }),
      m_terminated([[NSWorkspace sharedWorkspace] notificationCenter],
                   NSWorkspaceDidTerminateApplicationNotification,
                   [this](NSNotification* notification) { tell(subjectOf(notification)); }) {
    for (NSRunningApplication* application in [[NSWorkspace sharedWorkspace] runningApplications])
        note(application);
}

SubscriptionPtr Terminations::add(std::function<void(const RunningApplication&)> terminated) {
    auto connection =
        m_handlers.connect([terminated = std::move(terminated)](const RunningApplication& application) {
            atCallbackEdge([&] { terminated(application); });
        });
    return callOnEnd(
        [terminations = shared_from_this(), connection = std::shared_ptr(std::move(connection))] {});
}

std::vector<Terminations::Known>::iterator Terminations::find(NSRunningApplication* application) {
    return std::find_if(m_known.begin(), m_known.end(), [application](const Known& known) {
        return [known.application.get() isEqual:application] != NO;
    });
}

void Terminations::note(NSRunningApplication* application) {
    auto running = runningFrom(application);
    if (!running)
        return;
    if (const auto known = find(application); known != m_known.end())
        known->running = std::move(*running); // relaunched by the system with another process id
    else
        m_known.push_back({ObjcRef<NSRunningApplication*>::share(application), std::move(*running)});
}

void Terminations::tell(NSRunningApplication* application) {
    auto ended = runningFrom(application);
    // The record takes precedence: its process id is that of the process that has terminated.
    if (const auto known = find(application); known != m_known.end()) {
        ended = std::move(known->running);
        m_known.erase(known);
    }
    if (ended)
        m_handlers.send(*ended);
}

} // namespace tessarel::macos
