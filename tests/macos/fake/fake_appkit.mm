#include "macos/fake/fake_objects.h"

#import <AppKit/AppKit.h>
#include <Block.h>
#include <algorithm>
#include <cstdlib>

// Displays, programs, events and sounds. What the back end does not call is not there.

using namespace tessarel;
using namespace tessarel::fakemac;

namespace {

NSRect nsRect(const Rect& rect) {
    return NSMakeRect(rect.x, rect.y, rect.width, rect.height);
}

} // namespace

@interface TSLFakeScreen : NSScreen {
@public
    Display display;
}
@end

@implementation NSScreen
+ (NSArray*)screens {
    NSMutableArray* const all = [NSMutableArray array];
    for (const Display& display : mac().displays) {
        TSLFakeScreen* const screen = [[[TSLFakeScreen alloc] init] autorelease]; // another one every time
        screen->display = display;
        [all addObject:screen];
    }
    return all;
}
+ (NSScreen*)mainScreen {
    NSArray* const all = [self screens];
    const auto frontmost = mac().applications.find(mac().frontmost);
    const auto window = frontmost == mac().applications.end()
                            ? mac().windows.end()
                            : mac().windows.find(frontmost->second.focusedWindow);
    if (window != mac().windows.end()) {
        const Rect& axFrame = window->second.axFrame;
        const double y = mac().displays.at(0).frame.height - axFrame.midY();
        for (TSLFakeScreen* screen in all) {
            if (screen->display.frame.contains({axFrame.midX(), y}))
                return screen;
        }
    }
    return [all count] > 0 ? [all objectAtIndex:0] : nil;
}
- (NSRect)frame {
    return nsRect(((TSLFakeScreen*)self)->display.frame);
}
- (NSRect)visibleFrame {
    return nsRect(((TSLFakeScreen*)self)->display.visibleFrame);
}
- (NSDictionary*)deviceDescription {
    return @{@"NSScreenNumber" : [NSNumber numberWithUnsignedInt:((TSLFakeScreen*)self)->display.number]};
}
@end

@implementation TSLFakeScreen
@end

NSString* const NSWorkspaceApplicationKey = @"NSWorkspaceApplicationKey";
NSString* const NSWorkspaceDidLaunchApplicationNotification = @"NSWorkspaceDidLaunchApplicationNotification";
NSString* const NSWorkspaceDidActivateApplicationNotification =
    @"NSWorkspaceDidActivateApplicationNotification";
NSString* const NSWorkspaceDidTerminateApplicationNotification =
    @"NSWorkspaceDidTerminateApplicationNotification";

@interface TSLFakeApplication : NSRunningApplication {
@public
    pid_t started; // the process as which it was started
    pid_t pid;
    Application application;
}
@end

@implementation NSRunningApplication
+ (NSRunningApplication*)runningApplicationWithProcessIdentifier:(pid_t)pid {
    const auto found = mac().applications.find(pid);
    if (found == mac().applications.end())
        return nil;
    TSLFakeApplication* const application = [[[TSLFakeApplication alloc] init] autorelease];
    application->started = application->pid = pid;
    application->application = found->second;
    return application;
}
+ (NSArray*)runningApplicationsWithBundleIdentifier:(NSString*)bundleIdentifier {
    NSMutableArray* const all = [NSMutableArray array];
    for (const auto& [pid, application] : mac().applications) {
        if (application.bundleIdentifier == [bundleIdentifier UTF8String])
            [all addObject:[self runningApplicationWithProcessIdentifier:pid]];
    }
    return all;
}
- (pid_t)processIdentifier {
    return ((TSLFakeApplication*)self)->pid;
}
- (NSString*)bundleIdentifier {
    const auto& identifier = ((TSLFakeApplication*)self)->application.bundleIdentifier;
    return identifier ? autoreleased(*identifier) : nil;
}
- (NSApplicationActivationPolicy)activationPolicy {
    return ((TSLFakeApplication*)self)->application.isRegular ? NSApplicationActivationPolicyRegular
                                                              : NSApplicationActivationPolicyAccessory;
}
@end

@implementation TSLFakeApplication
- (NSUInteger)hash {
    return static_cast<NSUInteger>(started);
}
- (BOOL)isEqual:(id)other {
    return
        [other isKindOfClass:[TSLFakeApplication class]] && ((TSLFakeApplication*)other)->started == started;
}
@end

@implementation NSWorkspace
+ (NSWorkspace*)sharedWorkspace {
    static NSWorkspace* const workspace = [[NSWorkspace alloc] init];
    return workspace;
}
- (NSNotificationCenter*)notificationCenter {
    static NSNotificationCenter* const center = [[NSNotificationCenter alloc] init];
    return center;
}
- (NSRunningApplication*)frontmostApplication {
    return [NSRunningApplication runningApplicationWithProcessIdentifier:mac().frontmost];
}
- (NSArray*)runningApplications {
    NSMutableArray* const all = [NSMutableArray array];
    for (const auto& [pid, application] : mac().applications)
        [all addObject:[NSRunningApplication runningApplicationWithProcessIdentifier:pid]];
    return all;
}
- (BOOL)openURL:(NSURL*)url {
    mac().opened.push_back([[url absoluteString] UTF8String]);
    return YES;
}
- (NSURL*)URLForApplicationWithBundleIdentifier:(NSString*)bundleIdentifier {
    const auto found = mac().installed.find([bundleIdentifier UTF8String]);
    if (found == mac().installed.end())
        return nil;
    return [NSURL fileURLWithPath:autoreleased("/Applications/" + found->second)];
}
@end

void NSBeep() {
    ++mac().beeps;
}

@interface TSLFakeEvent : NSEvent {
@public
    std::uint64_t flags;
    unsigned short code;
    BOOL repeats;
}
@end

@interface TSLFakeMonitor : NSObject {
@public
    BOOL local;
    NSEventMask mask;
    id block; // of one kind or the other
}
@end

namespace {

std::vector<TSLFakeMonitor*> monitors;

id addMonitor(BOOL local, NSEventMask mask, id block) {
    if (!mac().allowsMonitors)
        return nil;
    TSLFakeMonitor* const monitor = [[TSLFakeMonitor alloc] init];
    monitor->local = local;
    monitor->mask = mask;
    monitor->block = (id)Block_copy((const void*)block);
    monitors.push_back(monitor);
    return [[monitor retain] autorelease];
}

/// Lets every monitor of the kind that is still there by then see the event; false when one swallows it.
bool show(BOOL local, NSEventMask mask, NSEvent* event) {
    const auto present = monitors;
    for (TSLFakeMonitor* monitor : present) {
        const bool isThere = std::ranges::find(monitors, monitor) != monitors.end();
        if (!isThere || monitor->local != local || (monitor->mask & mask) == 0)
            continue;
        [monitor retain];
        const bool goesOn = local ? ((NSEvent * (^)(NSEvent*)) monitor->block)(event) != nil
                                  : (((void (^)(NSEvent*))monitor->block)(event), true);
        [monitor release];
        if (!goesOn)
            return false;
    }
    return true;
}

TSLFakeEvent* fakeEvent(std::uint64_t flags) {
    TSLFakeEvent* const event = [[[TSLFakeEvent alloc] init] autorelease];
    event->flags = flags;
    return event;
}

void showMouse(NSEventMask mask) {
    @autoreleasepool {
        show(NO, mask, fakeEvent(mac().modifierFlags));
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
    return addMonitor(NO, mask, (id)handler);
}
+ (id)addLocalMonitorForEventsMatchingMask:(NSEventMask)mask handler:(NSEvent* (^)(NSEvent*))handler {
    return addMonitor(YES, mask, (id)handler);
}
+ (void)removeMonitor:(id)monitor {
    const auto found = std::ranges::find(monitors, monitor);
    if (found == monitors.end())
        abort(); // the real one releases it once too often
    monitors.erase(found);
    [monitor release];
}
+ (NSPoint)mouseLocation {
    const double height = mac().displays.empty() ? 0 : mac().displays.front().frame.height;
    return NSMakePoint(mac().axPointer.x, height - mac().axPointer.y);
}
- (NSEventModifierFlags)modifierFlags {
    return ((TSLFakeEvent*)self)->flags;
}
- (unsigned short)keyCode {
    return ((TSLFakeEvent*)self)->code;
}
- (BOOL)isARepeat {
    return ((TSLFakeEvent*)self)->repeats;
}
@end

@implementation TSLFakeEvent
@end

namespace tessarel::fakemac {

namespace {

constexpr std::uint64_t kCapsLock = 1U << 16U;

bool buttonIsDown = false;
bool pressWasOurs = false;

std::uint64_t flagsOf(std::uint32_t mods) {
    return ((mods & 256U) != 0 ? modifier_flag::kCommand : 0U) |
           ((mods & 512U) != 0 ? modifier_flag::kShift : 0U) |
           ((mods & 2048U) != 0 ? modifier_flag::kOption : 0U) |
           ((mods & 4096U) != 0 ? modifier_flag::kControl : 0U);
}

} // namespace

void movePointer(const Point& axPoint) {
    mac().axPointer = axPoint;
    if (buttonIsDown && !pressWasOurs)
        showMouse(NSEventMaskLeftMouseDragged);
}

void pressLeftButton() {
    const auto window = mac().windows.find(windowAt(mac().axPointer));
    buttonIsDown = true;
    pressWasOurs = window != mac().windows.end() && window->second.pid == mac().ownPid;
    if (!pressWasOurs)
        showMouse(NSEventMaskLeftMouseDown);
}

void releaseLeftButton() {
    buttonIsDown = false;
    if (!pressWasOurs)
        showMouse(NSEventMaskLeftMouseUp);
}

void pressKeys(std::uint32_t keyCode, std::uint32_t mods, bool repeats) {
    @autoreleasepool {
        if (pressHotKey(keyCode, mods) || mac().frontmost != mac().ownPid)
            return;
        TSLFakeEvent* const event = fakeEvent(flagsOf(mods) | kCapsLock);
        event->code = static_cast<unsigned short>(keyCode);
        event->repeats = repeats ? YES : NO;
        show(YES, NSEventMaskKeyDown, event);
    }
}

std::size_t globalMonitors() {
    return static_cast<std::size_t>(std::ranges::count_if(monitors, [](auto* one) { return !one->local; }));
}

void describeMonitors(std::vector<std::string>& lines) {
    if (!monitors.empty())
        lines.push_back(std::to_string(monitors.size()) + " event monitors");
}

void postApplicationNotification(NSString* name, pid_t pid) {
    @autoreleasepool {
        NSRunningApplication* const application =
            [NSRunningApplication runningApplicationWithProcessIdentifier:pid];
        [[[NSWorkspace sharedWorkspace] notificationCenter]
            postNotificationName:name
                          object:[NSWorkspace sharedWorkspace]
                        userInfo:@{NSWorkspaceApplicationKey : application}];
    }
}

void postTermination(pid_t pid, bool isNumbered) {
    @autoreleasepool {
        // The object is from before the end: it still knows what it was.
        TSLFakeApplication* const application =
            (TSLFakeApplication*)[NSRunningApplication runningApplicationWithProcessIdentifier:pid];
        if (!isNumbered)
            application->pid = -1;
        mac().applications.erase(pid);
        [[[NSWorkspace sharedWorkspace] notificationCenter]
            postNotificationName:NSWorkspaceDidTerminateApplicationNotification
                          object:[NSWorkspace sharedWorkspace]
                        userInfo:@{NSWorkspaceApplicationKey : application}];
    }
}

} // namespace tessarel::fakemac
