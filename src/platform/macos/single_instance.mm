#include "platform/macos/single_instance.h"

#include "model/config.h"
#include "platform/macos/conversions.h"
#include "platform/macos/notification_observer.h"
#include "platform/macos/reopen_requests.h"

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

/// When a process started, to the microsecond, and its number: the lesser one was first.
using Start = std::tuple<std::uint64_t, std::uint64_t, pid_t>;

/// Of a process that has gone, or is not known: after all others.
constexpr Start kNever{std::numeric_limits<std::uint64_t>::max(), 0, 0};

Start startOf(pid_t pid) {
    proc_bsdinfo info{};
    if (proc_pidinfo(pid, PROC_PIDTBSDINFO, 0, &info, sizeof info) != static_cast<int>(sizeof info))
        return kNever;
    return {info.pbi_start_tvsec, info.pbi_start_tvusec, pid};
}

/// Copies that start together see each other: the first of them stays, and no other.
bool anOlderCopyRuns() {
    NSString* const identifier = [[NSBundle mainBundle] bundleIdentifier];
    if (!identifier) // a bare executable, for which the system knows no others
        return false;
    const Start own = startOf([[NSProcessInfo processInfo] processIdentifier]);
    for (NSRunningApplication* copy in
         [NSRunningApplication runningApplicationsWithBundleIdentifier:identifier]) {
        if (startOf([copy processIdentifier]) < own)
            return true;
    }
    return false;
}

/// Whoever has opened the program again, it is told.
struct Claim : Subscription {
    SubscriptionPtr toldByCopies;
    SubscriptionPtr toldBySystem;
};

} // namespace

SubscriptionPtr MacSingleInstance::claim(std::function<void()> reopened) {
    @autoreleasepool {
        const auto name = nsString(std::string(Config::bundleID) + ".reopen");
        NSDistributedNotificationCenter* const center = [NSDistributedNotificationCenter defaultCenter];
        if (anOlderCopyRuns()) {
            // At once: a program in the background would otherwise hear of it when it comes to the front.
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
