// SPDX-License-Identifier: MIT

#pragma once

#include <CoreGraphics/CoreGraphics.h>
#import <Foundation/Foundation.h>

typedef unsigned long long NSEventMask;
enum : NSEventMask {
    NSEventMaskLeftMouseDown = 1ULL << 1,
    NSEventMaskLeftMouseUp = 1ULL << 2,
    NSEventMaskLeftMouseDragged = 1ULL << 6,
    NSEventMaskRightMouseDragged = 1ULL << 7,
    NSEventMaskKeyDown = 1ULL << 10,
    NSEventMaskFlagsChanged = 1ULL << 12,
};
typedef NSUInteger NSEventType;
enum : NSUInteger {
    NSEventTypeLeftMouseDown = 1,
    NSEventTypeLeftMouseUp = 2,
    NSEventTypeRightMouseDown = 3,
    NSEventTypeRightMouseUp = 4,
    NSEventTypeLeftMouseDragged = 6,
    NSEventTypeRightMouseDragged = 7,
    NSEventTypeKeyDown = 10,
    NSEventTypeFlagsChanged = 12,
};
typedef NSUInteger NSEventModifierFlags;
enum : NSUInteger {
    NSEventModifierFlagShift = 1UL << 17,
    NSEventModifierFlagCommand = 1UL << 20,
};
@interface NSEvent : NSObject
+ (id)addGlobalMonitorForEventsMatchingMask:(NSEventMask)mask handler:(void (^)(NSEvent*))handler;
+ (id)addLocalMonitorForEventsMatchingMask:(NSEventMask)mask handler:(NSEvent* (^)(NSEvent*))handler;
+ (void)removeMonitor:(id)monitor;
@property(class, readonly) NSPoint mouseLocation;
@property(readonly) NSEventType type;
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

@interface NSImage : NSObject
+ (NSImage*)imageWithSystemSymbolName:(NSString*)name
             accessibilityDescription:(NSString*)description SDK_SINCE(11.0);
- (BOOL)isTemplate; // not a property, because `template` is a C++ keyword
- (void)setTemplate:(BOOL)isTemplate;
@end

@class NSMenu;
typedef NSInteger NSControlStateValue;
enum : NSInteger { NSControlStateValueOff = 0, NSControlStateValueOn = 1 };
@interface NSMenuItem : NSObject
+ (NSMenuItem*)separatorItem;
- (instancetype)initWithTitle:(NSString*)title action:(SEL)action keyEquivalent:(NSString*)keyEquivalent;
@property(assign) id target;
@property SEL action;
@property(strong) id representedObject;
@property(getter=isEnabled) BOOL enabled;
@property NSControlStateValue state;
@property(strong) NSMenu* submenu;
@property(copy) NSString* keyEquivalent;
@property NSEventModifierFlags keyEquivalentModifierMask;
@end

@protocol NSMenuDelegate <NSObject>
@optional
- (void)menuNeedsUpdate:(NSMenu*)menu;
- (void)menuDidClose:(NSMenu*)menu;
@end

@interface NSMenu : NSObject
- (instancetype)initWithTitle:(NSString*)title;
- (void)addItem:(NSMenuItem*)item;
- (void)removeAllItems;
@property BOOL autoenablesItems;
@property(assign) id<NSMenuDelegate> delegate;
@end

@interface NSStatusBarButton : NSObject
@property(strong) NSImage* image;
@property(copy) NSString* title;
@property BOOL appearsDisabled;
@end

@interface NSStatusItem : NSObject
@property(readonly, strong) NSStatusBarButton* button SDK_SINCE(10.10);
@property(strong) NSMenu* menu;
@end

static const CGFloat NSVariableStatusItemLength = -1;
@interface NSStatusBar : NSObject
@property(class, readonly, strong) NSStatusBar* systemStatusBar;
- (NSStatusItem*)statusItemWithLength:(CGFloat)length;
- (void)removeStatusItem:(NSStatusItem*)item;
@end

SDK_EXTERN NSString* const NSApplicationDidFinishLaunchingNotification;
@interface NSApplication : NSObject
@property(class, readonly, strong) NSApplication* sharedApplication;
@property(strong) NSMenu* mainMenu;
- (BOOL)sendAction:(SEL)action to:(id)target from:(id)sender;
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)policy;
- (void)activateIgnoringOtherApps:(BOOL)ignoringOtherApps;
@end

typedef NSInteger NSWindowLevel;
enum : NSInteger { NSStatusWindowLevel = 25 };
typedef NSUInteger NSWindowCollectionBehavior;
enum : NSUInteger {
    NSWindowCollectionBehaviorCanJoinAllSpaces = 1 << 0,
    NSWindowCollectionBehaviorStationary = 1 << 4,
    NSWindowCollectionBehaviorIgnoresCycle = 1 << 6,
    NSWindowCollectionBehaviorFullScreenAuxiliary = 1 << 8,
};
@interface NSWindow : NSObject
@property NSWindowLevel level;
@property NSWindowCollectionBehavior collectionBehavior;
@property BOOL ignoresMouseEvents;
@property BOOL hasShadow;
- (void)orderFrontRegardless;
- (void)makeKeyWindow;
@end

@interface NSView : NSObject
@property(readonly, assign) NSWindow* window;
@end

typedef NSInteger NSModalResponse;
enum : NSInteger { NSModalResponseOK = 1 };
@interface NSOpenPanel : NSObject
+ (NSOpenPanel*)openPanel;
@property(copy) NSArray* allowedContentTypes SDK_SINCE(11.0);
@property(copy) NSURL* directoryURL;
@property(copy) NSString* prompt;
@property BOOL canChooseDirectories;
@property BOOL allowsMultipleSelection;
@property(readonly, copy) NSArray* URLs;
- (NSModalResponse)runModal;
@end

// A class of Foundation, of which GNUstep declares only the name.
@interface NSAppleEventManager (Events)
+ (NSAppleEventManager*)sharedAppleEventManager;
- (void)setEventHandler:(id)handler
            andSelector:(SEL)selector
          forEventClass:(uint32_t)eventClass
             andEventID:(uint32_t)eventID;
- (void)removeEventHandlerForEventClass:(uint32_t)eventClass andEventID:(uint32_t)eventID;
@end

@interface NSColorSpace : NSObject
@property(class, readonly, strong) NSColorSpace* sRGBColorSpace;
@end

@interface NSColor : NSObject
@property(class, readonly, strong) NSColor* controlAccentColor SDK_SINCE(10.14);
- (NSColor*)colorUsingColorSpace:(NSColorSpace*)space;
@property(readonly) CGFloat redComponent;
@property(readonly) CGFloat greenComponent;
@property(readonly) CGFloat blueComponent;
@end
