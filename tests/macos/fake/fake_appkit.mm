// SPDX-License-Identifier: MIT

#include "macos/fake/fake_objects.h"

#import <AppKit/AppKit.h>
#include <algorithm>
#include <utility>

// Screens, running applications, the workspace and the alert sound, as far as the back end calls them.

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

namespace {

/// Returns whether the screen's display still exists. The object of a disconnected display has empty frames.
bool isConnected(NSScreen* screen) {
    return std::ranges::any_of(mac().displays, [&](const Display& display) {
        return display.number == ((TSLFakeScreen*)screen)->display.number;
    });
}

} // namespace

@implementation NSScreen
+ (NSArray*)screens {
    checkThread();
    if (auto& changes = mac().displayChanges; !changes.empty()) {
        mac().displays = changes.front();
        changes.erase(changes.begin());
    }
    NSMutableArray* const all = [NSMutableArray array];
    for (const Display& display : mac().displays) {
        TSLFakeScreen* const screen = [[[TSLFakeScreen alloc] init] autorelease]; // new for each call
        screen->display = display;
        [all addObject:screen];
    }
    if (const auto next = std::exchange(mac().nextDisplays, std::nullopt))
        mac().displays = *next;
    return all;
}
+ (NSScreen*)mainScreen {
    checkThread();
    const auto present = mac().displays;
    NSArray* const all = [self screens];
    const auto frontmost = mac().applications.find(mac().frontmost);
    const auto window = frontmost == mac().applications.end()
                            ? mac().windows.end()
                            : mac().windows.find(frontmost->second.focusedWindow);
    if (window != mac().windows.end()) {
        const Rect& axFrame = window->second.axFrame;
        const double y = present.at(0).frame.height - axFrame.midY();
        for (TSLFakeScreen* screen in all) {
            if (screen->display.frame.contains({axFrame.midX(), y}))
                return screen;
        }
    }
    return [all count] > 0 ? [all objectAtIndex:0] : nil;
}
- (NSRect)frame {
    checkThread();
    return isConnected(self) ? nsRect(((TSLFakeScreen*)self)->display.frame) : NSRect{};
}
- (NSRect)visibleFrame {
    checkThread();
    return isConnected(self) ? nsRect(((TSLFakeScreen*)self)->display.visibleFrame) : NSRect{};
}
- (NSDictionary*)deviceDescription {
    checkThread();
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
    pid_t started; // process id at launch, which identifies the application
    pid_t pid;     // -1 once the system has forgotten it
    Application application;
}
@end

@implementation NSRunningApplication
+ (NSRunningApplication*)runningApplicationWithProcessIdentifier:(pid_t)pid {
    checkThread();
    const auto found = mac().applications.find(pid);
    if (found == mac().applications.end())
        return nil;
    TSLFakeApplication* const application = [[[TSLFakeApplication alloc] init] autorelease];
    application->pid = pid;
    application->started = found->second.relaunchedFrom != 0 ? found->second.relaunchedFrom : pid;
    application->application = found->second;
    return application;
}
+ (NSArray*)runningApplicationsWithBundleIdentifier:(NSString*)bundleIdentifier {
    checkThread();
    NSMutableArray* const all = [NSMutableArray array];
    for (const auto& [pid, application] : mac().applications) {
        if (application.bundleIdentifier == [bundleIdentifier UTF8String])
            [all addObject:[self runningApplicationWithProcessIdentifier:pid]];
    }
    return all;
}
- (pid_t)processIdentifier {
    checkThread();
    return ((TSLFakeApplication*)self)->pid;
}
- (NSString*)bundleIdentifier {
    checkThread();
    const auto& identifier = ((TSLFakeApplication*)self)->application.bundleIdentifier;
    return identifier ? autoreleased(*identifier) : nil;
}
- (NSApplicationActivationPolicy)activationPolicy {
    checkThread();
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
    checkThread();
    static NSWorkspace* const workspace = [[NSWorkspace alloc] init];
    return workspace;
}
- (NSNotificationCenter*)notificationCenter {
    checkThread();
    static NSNotificationCenter* const center = newCenter();
    return center;
}
- (NSRunningApplication*)frontmostApplication {
    checkThread();
    return [NSRunningApplication runningApplicationWithProcessIdentifier:mac().frontmost];
}
- (NSArray*)runningApplications {
    checkThread();
    NSMutableArray* const all = [NSMutableArray array];
    for (const auto& [pid, application] : mac().applications)
        [all addObject:[NSRunningApplication runningApplicationWithProcessIdentifier:pid]];
    return all;
}
- (BOOL)openURL:(NSURL*)url {
    checkThread();
    mac().opened.push_back([[url absoluteString] UTF8String]);
    return YES;
}
- (NSURL*)URLForApplicationWithBundleIdentifier:(NSString*)bundleIdentifier {
    checkThread();
    const auto found = mac().installed.find([bundleIdentifier UTF8String]);
    if (found == mac().installed.end())
        return nil;
    return [NSURL fileURLWithPath:autoreleased("/Applications/" + found->second)];
}
@end

void NSBeep() {
    checkThread();
    ++mac().beeps;
}

namespace tessarel::fakemac {

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
        // Created before the application is erased, so the object still has its properties.
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
