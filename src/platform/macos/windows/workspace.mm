// SPDX-License-Identifier: MIT

#include "platform/macos/windows/workspace.h"

#include "platform/macos/objects/conversions.h"
#include "platform/macos/objects/notification_observer.h"
#include "platform/macos/windows/running_applications.h"

#include <string_view>
#include <utility>

namespace tessarel::macos {

namespace {

/// Must not be called for `Terminated`, which `Terminations` handles.
NSString* nameOf(ApplicationEvent event) {
    return event == ApplicationEvent::Launched ? NSWorkspaceDidLaunchApplicationNotification
                                               : NSWorkspaceDidActivateApplicationNotification;
}

/// Removes every ".app", not only the one at the end.
std::string withoutExtension(std::string name) {
    constexpr std::string_view kExtension = ".app";
    for (auto at = name.find(kExtension); at != std::string::npos; at = name.find(kExtension))
        name.erase(at, kExtension.size());
    return name;
}

} // namespace

std::optional<RunningApplication> MacWorkspace::frontmostApplication() {
    @autoreleasepool {
        return runningFrom([[NSWorkspace sharedWorkspace] frontmostApplication]);
    }
}

std::optional<RunningApplication> MacWorkspace::runningApplication(ProcessId pid) {
    @autoreleasepool {
        return runningFrom([NSRunningApplication runningApplicationWithProcessIdentifier:pid]);
    }
}

std::vector<RunningApplication> MacWorkspace::runningApplications() {
    @autoreleasepool {
        std::vector<RunningApplication> all;
        for (NSRunningApplication* application in [[NSWorkspace sharedWorkspace] runningApplications]) {
            if (auto running = runningFrom(application))
                all.push_back(std::move(*running));
        }
        return all;
    }
}

std::optional<std::string> MacWorkspace::displayName(const std::string& bundleIdentifier) {
    @autoreleasepool {
        const auto identifier = nsString(bundleIdentifier);
        if (!identifier)
            return {};
        NSURL* const address =
            [[NSWorkspace sharedWorkspace] URLForApplicationWithBundleIdentifier:identifier.get()];
        if (!address)
            return {};
        return withoutExtension(
            stringFrom([[NSFileManager defaultManager] displayNameAtPath:[address path]]));
    }
}

SubscriptionPtr MacWorkspace::addObserver(ApplicationEvent event,
                                          std::function<void(const RunningApplication&)> handler) {
    @autoreleasepool {
        if (event == ApplicationEvent::Terminated)
            return terminations()->add(std::move(handler));
        // The workspace posts to a notification centre of its own, not to the default one.
        return std::make_unique<NotificationObserver>(
            [[NSWorkspace sharedWorkspace] notificationCenter], nameOf(event),
            [handler = std::move(handler)](NSNotification* notification) {
                if (const auto running = runningFrom(subjectOf(notification)))
                    handler(*running);
            });
    }
}

std::shared_ptr<Terminations> MacWorkspace::terminations() {
    auto present = m_terminations.lock();
    if (!present)
        m_terminations = present = std::make_shared<Terminations>();
    return present;
}

ProcessId MacWorkspace::ownProcessIdentifier() {
    @autoreleasepool {
        return [[NSProcessInfo processInfo] processIdentifier];
    }
}

} // namespace tessarel::macos
