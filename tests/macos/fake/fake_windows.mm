// SPDX-License-Identifier: MIT

#include "macos/fake/fake_windows.h"

#include "macos/fake/fake_objects.h"

#import <AppKit/AppKit.h>
#import <UniformTypeIdentifiers/UniformTypeIdentifiers.h>
#include <algorithm>
#include <vector>

// This program's own windows and the open panel.

using namespace tessarel;
using namespace tessarel::fakemac;

@interface TSLFakeWindow : NSWindow {
    Counted counted;
    NSWindowLevel level;
    NSWindowCollectionBehavior collectionBehavior;
    BOOL ignoresMouseEvents;
    BOOL hasShadow;
@public
    BOOL isVisible;
    BOOL isInFront;
    Rect frame;
}
@property NSWindowLevel level;
@property NSWindowCollectionBehavior collectionBehavior;
@property BOOL ignoresMouseEvents;
@property BOOL hasShadow;
@end

@interface TSLFakeView : NSView {
    Counted counted;
@public
    TSLFakeWindow* ownWindow;
}
@end

@interface TSLFakePanel : NSOpenPanel {
    Counted counted;
    NSArray* allowedContentTypes;
    NSURL* directoryURL;
    NSString* prompt;
    BOOL canChooseDirectories;
    BOOL allowsMultipleSelection;
}
@property(copy) NSArray* allowedContentTypes;
@property(copy) NSURL* directoryURL;
@property(copy) NSString* prompt;
@property BOOL canChooseDirectories;
@property BOOL allowsMultipleSelection;
@end

namespace {

std::vector<TSLFakeWindow*> windows; // all existing windows, owned by their views
TSLFakeWindow* keyWindow = nil;

bool isOwnProgramInFront() {
    return mac().frontmost == mac().ownPid;
}

} // namespace

#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wincomplete-implementation"

@implementation NSWindow
@dynamic level, collectionBehavior, ignoresMouseEvents, hasShadow;
@end

@implementation NSView
@dynamic window;
@end

@implementation NSOpenPanel
@dynamic allowedContentTypes, directoryURL, prompt, canChooseDirectories, allowsMultipleSelection, URLs;
+ (NSOpenPanel*)openPanel {
    checkThread();
    return [[[TSLFakePanel alloc] init] autorelease];
}
@end

#pragma clang diagnostic pop

@implementation TSLFakeWindow
TSL_ASSIGNED(NSWindowLevel, level, setLevel)
TSL_ASSIGNED(NSWindowCollectionBehavior, collectionBehavior, setCollectionBehavior)
TSL_ASSIGNED(BOOL, ignoresMouseEvents, setIgnoresMouseEvents)
TSL_ASSIGNED(BOOL, hasShadow, setHasShadow)
- (instancetype)init {
    if ((self = [super init])) {
        self.hasShadow = YES;
        windows.push_back(self);
    }
    return self;
}
- (void)dealloc {
    std::erase(windows, self);
    if (keyWindow == self)
        keyWindow = nil;
    [super dealloc];
}
- (void)orderFrontRegardless {
    checkThread();
    checkMenusAreGone("orders a window front");
    isVisible = isInFront = YES;
}
- (void)makeKeyWindow {
    checkThread();
    keyWindow = self;
}
@end

@implementation TSLFakeView
- (void)dealloc {
    [ownWindow release];
    [super dealloc];
}
- (NSWindow*)window {
    checkThread();
    return ownWindow;
}
@end

@implementation TSLFakePanel
TSL_COPIED(NSArray*, allowedContentTypes, setAllowedContentTypes)
TSL_COPIED(NSURL*, directoryURL, setDirectoryURL)
TSL_COPIED(NSString*, prompt, setPrompt)
TSL_ASSIGNED(BOOL, canChooseDirectories, setCanChooseDirectories)
TSL_ASSIGNED(BOOL, allowsMultipleSelection, setAllowsMultipleSelection)
- (instancetype)init {
    if ((self = [super init]))
        // Not AppKit's defaults, so that the back end has to set both.
        self.canChooseDirectories = self.allowsMultipleSelection = YES;
    return self;
}
- (void)dealloc {
    self.allowedContentTypes = nil;
    self.directoryURL = nil;
    self.prompt = nil;
    [super dealloc];
}
- (NSModalResponse)runModal {
    checkThread();
    const bool onlyApplications = [self.allowedContentTypes isEqual:@[ UTTypeApplicationBundle ]];
    mac().panels.push_back(std::string(self.allowsMultipleSelection ? "several " : "one ") +
                           (onlyApplications ? "application" : "file") +
                           (self.canChooseDirectories ? " or folder" : "") + " in " +
                           [[self.directoryURL path] UTF8String] + ", " + [self.prompt UTF8String]);
    return mac().panelChoice ? 1 : 0;
}
- (NSArray*)URLs {
    checkThread();
    return mac().panelChoice ? @[ [NSURL fileURLWithPath:autoreleased(*mac().panelChoice)] ] : @[];
}
@end

// Like kCFBooleanTrue: an object that exists only once the runtime has its class.
extern "C" {
id fakeApplicationBundle __asm__("UTTypeApplicationBundle");
}
@implementation UTType
+ (void)load {
    fakeApplicationBundle = [[UTType alloc] init];
}
@end

namespace tessarel::fakemac {

View::View(bool isInWindow) {
    TSLFakeView* const view = [[TSLFakeView alloc] init];
    if (isInWindow)
        view->ownWindow = [[TSLFakeWindow alloc] init];
    m_view = view;
}

View::~View() {
    [(TSLFakeView*)m_view release];
}

WindowSight View::window() const {
    TSLFakeWindow* const window = ((TSLFakeView*)m_view)->ownWindow;
    if (!window)
        return {};
    return {window.level,
            window.collectionBehavior,
            window.ignoresMouseEvents != NO,
            window.hasShadow != NO,
            window->isVisible != NO,
            window->isInFront != NO,
            window == keyWindow,
            window->frame};
}

void View::makeWindowAnew() {
    constexpr NSWindowLevel kToolkitsTopLevel = 8;
    constexpr NSWindowCollectionBehavior kFullScreenPrimary = 1U << 7U;
    TSLFakeWindow* const window = ((TSLFakeView*)m_view)->ownWindow;
    window.level = kToolkitsTopLevel;
    window.collectionBehavior = kFullScreenPrimary;
    window.ignoresMouseEvents = NO;
    window.hasShadow = YES;
}

void View::orderFront(bool makesKey) {
    checkMenusAreGone("orders a window front");
    TSLFakeWindow* const window = ((TSLFakeView*)m_view)->ownWindow;
    window->isVisible = YES;
    window->isInFront = isOwnProgramInFront() ? YES : NO; // otherwise behind the active application's windows
    if (makesKey)
        keyWindow = window;
}

void View::orderOut() {
    TSLFakeWindow* const window = ((TSLFakeView*)m_view)->ownWindow;
    window->isVisible = window->isInFront = NO;
    if (keyWindow == window)
        keyWindow = nil;
}

void View::setFrame(const Rect& screenFrame) {
    ((TSLFakeView*)m_view)->ownWindow->frame = screenFrame;
}

void activateOwnProgram() {
    checkMenusAreGone("asks to come to the front");
    ++mac().activationRequests;
    if (!mac().grantsActivation)
        return;
    ++mac().activations;
    bringToFront(mac().ownPid);
    for (TSLFakeWindow* window : windows)
        window->isInFront = window->isVisible;
}

void sendOwnWindowsBack() {
    for (TSLFakeWindow* window : windows) {
        if (window.level < NSStatusWindowLevel)
            window->isInFront = NO;
    }
}

} // namespace tessarel::fakemac
