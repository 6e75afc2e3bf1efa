// SPDX-License-Identifier: MIT

#include "macos/fake/fake_objects.h"

#import <Foundation/Foundation.h>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <thread>
#include <unistd.h>
#include <utility>
#include <variant>

// The run loop of this program: what is delivered only by an iteration, what must not happen between a menu's
// close and the next iteration, and the notification centres.

using namespace tessarel;
using namespace tessarel::fakemac;

namespace {

bool menuIsFading = false;
std::vector<std::string> faults;

/// A distributed notification on its way.
struct Letter {
    std::string name;
    NotificationContents contents;
};

/// Distributed notifications that wait for the next iteration. Another thread adds them, as in the system.
struct Inbox {
    std::mutex mutex;
    std::vector<Letter> letters;
} inbox;

/// Returns the value as it leaves the process. Ends the process for one that is not of a property list.
NotificationValue packed(id value) {
    if ([value isKindOfClass:[NSString class]])
        return {std::string([value UTF8String])};
    if ([value isKindOfClass:[NSNumber class]])
        return {[value doubleValue]};
    if (![value isKindOfClass:[NSArray class]])
        std::abort();
    std::vector<NotificationValue> values;
    for (id member in value)
        values.push_back(packed(member));
    return {std::move(values)};
}

NotificationContents packedMembers(NSDictionary* contents) {
    NotificationContents members;
    for (NSString* key in contents)
        members[[key UTF8String]] = packed([contents objectForKey:key]);
    return members;
}

id unpacked(const NotificationValue& value) {
    if (const auto* const text = std::get_if<std::string>(&value.value))
        return autoreleased(*text);
    if (const auto* const number = std::get_if<double>(&value.value))
        return [NSNumber numberWithDouble:*number];
    NSMutableArray* const values = [NSMutableArray array];
    for (const NotificationValue& member : std::get<std::vector<NotificationValue>>(value.value))
        [values addObject:unpacked(member)];
    return values;
}

NSDictionary* unpackedMembers(const NotificationContents& members) {
    if (members.empty())
        return nil;
    NSMutableDictionary* const contents = [NSMutableDictionary dictionary];
    for (const auto& [key, value] : members)
        [contents setObject:unpacked(value) forKey:autoreleased(key)];
    return contents;
}

std::vector<id> listeners; // registered observers; one entry for each registration

/// Returns whether the observer belongs to the back end and not to GNUstep.
bool isOfBackEnd(id observer) {
    return [NSStringFromClass([observer class]) hasPrefix:@"TSL"];
}

} // namespace

/// A notification centre that counts the back end's observers.
@interface TSLFakeCenter : NSNotificationCenter
@end
@implementation TSLFakeCenter
- (void)addObserver:(id)observer selector:(SEL)selector name:(NSString*)name object:(id)object {
    if (isOfBackEnd(observer)) {
        checkThread();
        listeners.push_back(observer);
    }
    [super addObserver:observer selector:selector name:name object:object];
}
- (void)removeObserver:(id)observer {
    checkThread();
    std::erase(listeners, observer);
    [super removeObserver:observer];
}
@end

/// The distributed notification centre. All copies of the program are in this process.
@interface TSLFakeDistributedCenter : TSLFakeCenter
@end
@implementation TSLFakeDistributedCenter
- (void)postNotificationName:(NSString*)name
                      object:(NSString*)object
                    userInfo:(NSDictionary*)userInfo
          deliverImmediately:(BOOL)immediately {
    checkThread();
    (void)object;
    if (!immediately) // not delivered to an inactive application
        return;
    std::thread([letter = Letter{[name UTF8String], packedMembers(userInfo)}] {
        const std::scoped_lock lock(inbox.mutex);
        inbox.letters.push_back(letter);
    }).join();
}
@end

#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wobjc-protocol-method-implementation"

@interface NSNotificationCenter (TSLFake)
@end
@implementation NSNotificationCenter (TSLFake)
+ (NSNotificationCenter*)defaultCenter {
    static TSLFakeCenter* const center = [[TSLFakeCenter alloc] init];
    return center;
}
@end

@interface NSDistributedNotificationCenter (TSLFake)
@end
@implementation NSDistributedNotificationCenter (TSLFake)
+ (id)defaultCenter {
    checkThread();
    static TSLFakeDistributedCenter* const center = [[TSLFakeDistributedCenter alloc] init];
    return center;
}
@end

#pragma clang diagnostic pop

CFRunLoopRunResult CFRunLoopRunInMode(CFRunLoopMode mode, CFTimeInterval seconds, Boolean afterOneSource) {
    checkThread();
    if (mode != kCFRunLoopDefaultMode || !afterOneSource)
        abort();
    const bool arrives = [] {
        const std::scoped_lock lock(inbox.mutex);
        return !inbox.letters.empty();
    }();
    if (arrives)
        turn();
    else
        passTime(seconds);
    return arrives ? kCFRunLoopRunHandledSource : kCFRunLoopRunTimedOut;
}

namespace tessarel::fakemac {

void checkThread() {
    if (gettid() == getpid())
        return;
    std::fputs("a framework is called off the main thread\n", stderr);
    std::abort();
}

NSNotificationCenter* newCenter() {
    return [[TSLFakeCenter alloc] init];
}

void turn() {
    menuIsFading = false;
    std::vector<Letter> letters;
    {
        const std::scoped_lock lock(inbox.mutex);
        letters = std::exchange(inbox.letters, {});
    }
    @autoreleasepool {
        for (const Letter& letter : letters)
            [[NSDistributedNotificationCenter defaultCenter]
                postNotificationName:autoreleased(letter.name)
                              object:nil
                            userInfo:unpackedMembers(letter.contents)];
    }
}

void postFromOutside(const std::string& name, const NotificationContents& contents) {
    const std::scoped_lock lock(inbox.mutex);
    inbox.letters.push_back({name, contents});
}

std::vector<std::string> notificationsOnTheWay() {
    const std::scoped_lock lock(inbox.mutex);
    std::vector<std::string> names;
    for (const Letter& letter : inbox.letters)
        names.push_back(letter.name);
    return names;
}

void letMenuFade() {
    menuIsFading = true;
}

void checkMenusAreGone(const char* what) {
    if (menuIsFading || mac().loopMode == LoopMode::EventTracking)
        faults.push_back(std::string("the program ") + what + " before a menu has gone");
}

void noteFault(const std::string& fault) {
    faults.push_back(fault);
}

void describeLoop(std::vector<std::string>& lines) {
    lines.insert(lines.end(), faults.begin(), faults.end());
    if (!listeners.empty())
        lines.push_back(std::to_string(listeners.size()) + " observers of notifications");
}

void resetLoop() {
    menuIsFading = false;
    faults.clear();
    inbox.letters.clear();
}

} // namespace tessarel::fakemac
