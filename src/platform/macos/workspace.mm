#include "platform/macos/workspace.h"

#include "platform/macos/conversions.h"
#include "platform/macos/notification_observer.h"

#import <AppKit/AppKit.h>
#include <string_view>
#include <utility>

namespace tessarel::macos {

namespace {

std::optional<RunningApplication> runningFrom(NSRunningApplication* application) {
    const pid_t pid = [application processIdentifier]; // 0 of nil, -1 of one that has no process
    if (pid <= 0)
        return {};
    return RunningApplication{pid, optionalStringFrom([application bundleIdentifier]),
                              [application activationPolicy] == NSApplicationActivationPolicyRegular};
}

NSString* nameOf(ApplicationEvent event) {
    switch (event) {
    case ApplicationEvent::Launched:
        return NSWorkspaceDidLaunchApplicationNotification;
    case ApplicationEvent::Activated:
        return NSWorkspaceDidActivateApplicationNotification;
    case ApplicationEvent::Terminated:
        return NSWorkspaceDidTerminateApplicationNotification;
    }
    return nil;
}

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
        // Not the default centre: the workspace has its own.
        return std::make_unique<NotificationObserver>(
            [[NSWorkspace sharedWorkspace] notificationCenter], nameOf(event),
            [handler = std::move(handler)](NSNotification* notification) {
                id const subject = [[notification userInfo] objectForKey:NSWorkspaceApplicationKey];
                if (const auto running = runningFrom(as<NSRunningApplication>(subject)))
                    handler(*running);
            });
    }
}

ProcessId MacWorkspace::ownProcessIdentifier() {
    @autoreleasepool {
        return [[NSProcessInfo processInfo] processIdentifier];
    }
}

} // namespace tessarel::macos
