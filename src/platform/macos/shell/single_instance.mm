// SPDX-License-Identifier: MIT

#include "platform/macos/shell/single_instance.h"

#include "model/config.h"
#include "platform/macos/objects/conversions.h"
#include "platform/macos/objects/notification_observer.h"
#include "platform/macos/shell/reopen_requests.h"

#import <AppKit/AppKit.h>
#include <cstdint>
#include <libproc.h>
#include <limits>
#include <memory>
#include <string>
#include <tuple>
#include <utility>

namespace tessarel::macos {

namespace {

/// Start time of a process in seconds and microseconds since 1970, and its process id, which decides between
/// equal times.
using Start = std::tuple<std::uint64_t, std::uint64_t, pid_t>;

/// Sorts after every start time; for a process that has exited or cannot be inspected.
constexpr Start kNever{std::numeric_limits<std::uint64_t>::max(), 0, 0};

/// Returns `kNever` when the system does not report the start time of the process.
Start startOf(pid_t pid) {
    proc_bsdinfo info{};
    if (proc_pidinfo(pid, PROC_PIDTBSDINFO, 0, &info, sizeof info) != static_cast<int>(sizeof info))
        return kNever;
    return {info.pbi_start_tvsec, info.pbi_start_tvusec, pid};
}

/// Returns whether a copy that started before this one is running. Of copies that start at the same time,
/// each sees the others, and only the first finds no older one.
bool anOlderCopyRuns() {
    NSString* const identifier = [[NSBundle mainBundle] bundleIdentifier];
    if (!identifier) // an executable outside a bundle
        return false;
    const Start own = startOf([[NSProcessInfo processInfo] processIdentifier]);
    for (NSRunningApplication* copy in
         [NSRunningApplication runningApplicationsWithBundleIdentifier:identifier]) {
        if (startOf([copy processIdentifier]) < own)
            return true;
    }
    return false;
}

/// Claim of the user session, with the subscriptions to both ways of opening the application again.
struct Claim : Subscription {
    SubscriptionPtr toldByCopies; // the distributed notification of a second copy
    SubscriptionPtr toldBySystem; // the Apple event
};

} // namespace

SubscriptionPtr MacSingleInstance::claim(std::function<void()> reopened, std::function<void()>) {
    @autoreleasepool {
        const auto name = nsString(std::string(Config::bundleID) + ".reopen");
        NSDistributedNotificationCenter* const center = [NSDistributedNotificationCenter defaultCenter];
        if (anOlderCopyRuns()) {
            // Without deliverImmediately an inactive application receives the notification only when it is
            // activated.
            [center postNotificationName:name.get() object:nil userInfo:nil deliverImmediately:YES];
            return nullptr;
        }
        auto claim = std::make_unique<Claim>();
        claim->toldByCopies = std::make_unique<NotificationObserver>(
            center, name.get(), [reopened](NSNotification*) { reopened(); });
        claim->toldBySystem = onReopenRequested(std::move(reopened));
        return claim;
    }
}

} // namespace tessarel::macos
