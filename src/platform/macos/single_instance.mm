#include "platform/macos/single_instance.h"

#include "model/config.h"
#include "platform/macos/conversions.h"
#include "platform/macos/notification_observer.h"

#import <AppKit/AppKit.h>
#include <memory>
#include <string>
#include <utility>

namespace tessarel::macos {

namespace {

bool anotherCopyRuns() {
    NSString* const identifier = [[NSBundle mainBundle] bundleIdentifier];
    if (!identifier) // a bare executable, for which the system knows no others
        return false;
    const pid_t own = [[NSProcessInfo processInfo] processIdentifier];
    for (NSRunningApplication* copy in
         [NSRunningApplication runningApplicationsWithBundleIdentifier:identifier]) {
        const pid_t pid = [copy processIdentifier];
        if (pid > 0 && pid != own)
            return true;
    }
    return false;
}

} // namespace

SubscriptionPtr MacSingleInstance::claim(std::function<void()> reopened) {
    @autoreleasepool {
        const auto name = nsString(std::string(Config::bundleID) + ".reopen");
        NSDistributedNotificationCenter* const center = [NSDistributedNotificationCenter defaultCenter];
        if (anotherCopyRuns()) {
            // At once: a program in the background would otherwise hear of it when it comes to the front.
            [center postNotificationName:name.get() object:nil userInfo:nil deliverImmediately:YES];
            return nullptr;
        }
        return std::make_unique<NotificationObserver>(
            center, name.get(), [reopened = std::move(reopened)](NSNotification*) { reopened(); });
    }
}

} // namespace tessarel::macos
