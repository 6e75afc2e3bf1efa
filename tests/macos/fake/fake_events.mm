// SPDX-License-Identifier: MIT

#include "macos/fake/fake_objects.h"

#import <AppKit/AppKit.h>
#include <Block.h>
#include <algorithm>
#include <cstdlib>
#include <map>
#include <utility>

// Mouse and keyboard of the user, and the event monitors.

using namespace tessarel;
using namespace tessarel::fakemac;

@interface TSLFakeEvent : NSEvent {
@public
    NSEventType type;
    std::uint64_t flags;
    unsigned short code;
    BOOL repeats;
}
@end

@interface TSLFakeMonitor : NSObject {
@public
    BOOL local;
    BOOL seesKeys; // false: a global monitor added without the permission, which never receives key events
    NSEventMask mask;
    id block; // takes an event; that of a local monitor also returns one
}
@end

namespace {

std::vector<TSLFakeMonitor*> monitors;

id addMonitor(BOOL local, NSEventMask mask, id block) {
    if (!mac().allowsMonitors)
        return nil;
    TSLFakeMonitor* const monitor = [[TSLFakeMonitor alloc] init];
    monitor->local = local;
    monitor->seesKeys = local || mac().trusted;
    monitor->mask = mask;
    monitor->block = (id)Block_copy((const void*)block);
    monitors.push_back(monitor);
    return [[monitor retain] autorelease];
}

constexpr NSEventMask kKeys = NSEventMaskKeyDown | NSEventMaskFlagsChanged;

NSEventMask maskOf(const TSLFakeEvent* event) {
    return NSEventMask{1} << event->type;
}

/// Delivers the event to all local or all global monitors, including those that another monitor removes
/// during the delivery. Returns false when a local monitor has consumed the event.
bool show(BOOL local, TSLFakeEvent* event) {
    checkThread();
    const NSEventMask mask = maskOf(event);
    NSMutableArray* const present = [NSMutableArray array];
    for (TSLFakeMonitor* monitor : monitors)
        [present addObject:monitor];
    for (TSLFakeMonitor* monitor in present) {
        if (monitor->local != local || (monitor->mask & mask) == 0 ||
            (!monitor->seesKeys && (mask & kKeys) != 0))
            continue;
        const bool goesOn = local ? ((NSEvent * (^)(NSEvent*)) monitor->block)(event) != nil
                                  : (((void (^)(NSEvent*))monitor->block)(event), true);
        if (!goesOn)
            return false;
    }
    return true;
}

TSLFakeEvent* fakeEvent(NSEventType type, std::uint64_t flags) {
    TSLFakeEvent* const event = [[[TSLFakeEvent alloc] init] autorelease];
    event->type = type;
    event->flags = flags;
    return event;
}

void showMouse(NSEventType type) {
    @autoreleasepool {
        show(NO, fakeEvent(type, mac().modifierFlags));
    }
}

} // namespace

@implementation TSLFakeMonitor
- (void)dealloc {
    Block_release((const void*)block);
    [super dealloc];
}
@end

@implementation NSEvent
+ (id)addGlobalMonitorForEventsMatchingMask:(NSEventMask)mask handler:(void (^)(NSEvent*))handler {
    checkThread();
    return addMonitor(NO, mask, (id)handler);
}
+ (id)addLocalMonitorForEventsMatchingMask:(NSEventMask)mask handler:(NSEvent* (^)(NSEvent*))handler {
    checkThread();
    return addMonitor(YES, mask, (id)handler);
}
+ (void)removeMonitor:(id)monitor {
    checkThread();
    const auto found = std::ranges::find(monitors, monitor);
    if (found == monitors.end())
        abort(); // AppKit would release the monitor once too often
    monitors.erase(found);
    [monitor release];
}
+ (NSPoint)mouseLocation {
    checkThread();
    const double height = mac().displays.empty() ? 0 : mac().displays.front().frame.height;
    return NSMakePoint(mac().axPointer.x, height - mac().axPointer.y);
}
- (NSEventModifierFlags)modifierFlags {
    checkThread();
    return ((TSLFakeEvent*)self)->flags;
}
- (NSEventType)type {
    checkThread();
    return ((TSLFakeEvent*)self)->type;
}
- (unsigned short)keyCode {
    checkThread();
    if ((maskOf((TSLFakeEvent*)self) & kKeys) == 0)
        abort(); // AppKit raises an exception
    return ((TSLFakeEvent*)self)->code;
}
- (BOOL)isARepeat {
    checkThread();
    if (((TSLFakeEvent*)self)->type != NSEventTypeKeyDown)
        abort(); // AppKit raises an exception
    return ((TSLFakeEvent*)self)->repeats;
}
@end

@implementation TSLFakeEvent
@end

namespace tessarel::fakemac {

namespace {

constexpr std::uint64_t kCapsLock = 1U << 16U;

/// The buttons that are held, by the type of their down event. The value is true if the button went down over
/// a window of this program, whose events global monitors do not receive.
std::map<NSEventType, bool> buttons;

/// Returns whether the button is held and global monitors receive its events.
bool isHeld(NSEventType button) {
    const auto held = buttons.find(button);
    return held != buttons.end() && !held->second;
}

void press(NSEventType button) {
    const auto window = mac().windows.find(windowAt(mac().axPointer));
    buttons[button] = window != mac().windows.end() && window->second.pid == mac().ownPid;
    if (isHeld(button))
        showMouse(button);
}

void release(NSEventType button, NSEventType up) {
    const bool isOthers = isHeld(button);
    buttons.erase(button);
    if (isOthers)
        showMouse(up);
}

std::uint64_t flagsOf(std::uint32_t mods) {
    return ((mods & 256U) != 0 ? kCommandFlag : 0U) | ((mods & 512U) != 0 ? kShiftFlag : 0U) |
           ((mods & 2048U) != 0 ? kOptionFlag : 0U) | ((mods & 4096U) != 0 ? kControlFlag : 0U);
}

} // namespace

void movePointer(const Point& axPoint) {
    mac().axPointer = axPoint;
    if (isHeld(NSEventTypeLeftMouseDown))
        showMouse(NSEventTypeLeftMouseDragged);
    if (isHeld(NSEventTypeRightMouseDown))
        showMouse(NSEventTypeRightMouseDragged);
}

void pressLeftButton() {
    press(NSEventTypeLeftMouseDown);
}

void releaseLeftButton() {
    release(NSEventTypeLeftMouseDown, NSEventTypeLeftMouseUp);
}

void pressRightButton() {
    press(NSEventTypeRightMouseDown);
}

void releaseRightButton() {
    release(NSEventTypeRightMouseDown, NSEventTypeRightMouseUp);
}

void holdModifiers(std::uint64_t flags) {
    if (std::exchange(mac().modifierFlags, flags) == flags)
        return;
    @autoreleasepool {
        // Key events go to the frontmost application, wherever the pointer is.
        const bool isOwn = mac().frontmost == mac().ownPid;
        if (show(isOwn ? YES : NO, fakeEvent(NSEventTypeFlagsChanged, flags)) && isOwn)
            ++mac().keysOfOwnWindows;
    }
}

void pressKeys(std::uint32_t keyCode, std::uint32_t mods, bool repeats) {
    @autoreleasepool {
        if (pressHotKey(keyCode, mods) || mac().frontmost != mac().ownPid)
            return;
        TSLFakeEvent* const event = fakeEvent(NSEventTypeKeyDown, flagsOf(mods) | kCapsLock);
        event->code = static_cast<unsigned short>(keyCode);
        event->repeats = repeats ? YES : NO;
        if (show(YES, event))
            ++mac().keysOfOwnWindows;
    }
}

std::size_t globalMonitors() {
    return static_cast<std::size_t>(std::ranges::count_if(monitors, [](auto* one) { return !one->local; }));
}

void resetInput() {
    buttons.clear();
}

void describeMonitors(std::vector<std::string>& lines) {
    if (!monitors.empty())
        lines.push_back(std::to_string(monitors.size()) + " event monitors");
}

} // namespace tessarel::fakemac
