#pragma once

#include <CoreGraphics/CoreGraphics.h>
#import <Foundation/Foundation.h>

typedef unsigned long long NSEventMask;
enum : NSEventMask {
    NSEventMaskLeftMouseDown = 1ULL << 1,
    NSEventMaskLeftMouseUp = 1ULL << 2,
    NSEventMaskLeftMouseDragged = 1ULL << 6,
    NSEventMaskKeyDown = 1ULL << 10,
};
typedef NSUInteger NSEventModifierFlags;
@interface NSEvent : NSObject
+ (id)addGlobalMonitorForEventsMatchingMask:(NSEventMask)mask handler:(void (^)(NSEvent*))handler;
+ (id)addLocalMonitorForEventsMatchingMask:(NSEventMask)mask handler:(NSEvent* (^)(NSEvent*))handler;
+ (void)removeMonitor:(id)monitor;
@property(class, readonly) NSPoint mouseLocation;
@property(readonly) NSEventModifierFlags modifierFlags;
@property(readonly) unsigned short keyCode;
@property(readonly, getter=isARepeat) BOOL ARepeat;
@end

@interface NSScreen : NSObject
@property(class, readonly, copy) NSArray* screens;
@property(class, readonly, strong) NSScreen* mainScreen;
@property(readonly) NSRect frame;
@property(readonly) NSRect visibleFrame;
@property(readonly, copy) NSDictionary* deviceDescription;
@end

typedef NSInteger NSApplicationActivationPolicy;
enum : NSInteger {
    NSApplicationActivationPolicyRegular = 0,
    NSApplicationActivationPolicyAccessory = 1,
};
@interface NSRunningApplication : NSObject
+ (NSRunningApplication*)runningApplicationWithProcessIdentifier:(pid_t)pid SDK_SINCE(10.6);
+ (NSArray*)runningApplicationsWithBundleIdentifier:(NSString*)bundleIdentifier SDK_SINCE(10.6);
@property(readonly) pid_t processIdentifier;
@property(readonly, copy) NSString* bundleIdentifier;
@property(readonly) NSApplicationActivationPolicy activationPolicy;
@end

SDK_EXTERN NSString* const NSWorkspaceApplicationKey;
SDK_EXTERN NSString* const NSWorkspaceDidLaunchApplicationNotification;
SDK_EXTERN NSString* const NSWorkspaceDidActivateApplicationNotification;
SDK_EXTERN NSString* const NSWorkspaceDidTerminateApplicationNotification;
@interface NSWorkspace : NSObject
@property(class, readonly, strong) NSWorkspace* sharedWorkspace;
@property(readonly, strong) NSNotificationCenter* notificationCenter;
@property(readonly, strong) NSRunningApplication* frontmostApplication SDK_SINCE(10.7);
@property(readonly, copy) NSArray* runningApplications SDK_SINCE(10.6);
- (BOOL)openURL:(NSURL*)url;
- (NSURL*)URLForApplicationWithBundleIdentifier:(NSString*)bundleIdentifier SDK_SINCE(10.6);
@end

SDK_EXTERN void NSBeep(void);
