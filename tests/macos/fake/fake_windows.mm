#include "macos/fake/fake_windows.h"

#include "macos/fake/fake_objects.h"

#import <AppKit/AppKit.h>
#import <UniformTypeIdentifiers/UniformTypeIdentifiers.h>

// This program's own windows, and the panel in which files are chosen.

using namespace tessarel;
using namespace tessarel::fakemac;

@interface TSLFakeWindow : NSWindow {
    Counted counted;
    NSWindowLevel level;
    NSWindowCollectionBehavior collectionBehavior;
    BOOL ignoresMouseEvents;
    BOOL hasShadow;
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
    return [[[TSLFakePanel alloc] init] autorelease];
}
@end

#pragma clang diagnostic pop

@implementation TSLFakeWindow
@synthesize level, collectionBehavior, ignoresMouseEvents, hasShadow;
@end

@implementation TSLFakeView
- (void)dealloc {
    [ownWindow release];
    [super dealloc];
}
- (NSWindow*)window {
    return ownWindow;
}
@end

@implementation TSLFakePanel
@synthesize allowedContentTypes, directoryURL, prompt, canChooseDirectories, allowsMultipleSelection;
- (instancetype)init {
    if ((self = [super init]))
        self.canChooseDirectories = self.allowsMultipleSelection = YES; // unlike the real one's
    return self;
}
- (void)dealloc {
    self.allowedContentTypes = nil;
    self.directoryURL = nil;
    self.prompt = nil;
    [super dealloc];
}
- (NSModalResponse)runModal {
    const bool onlyApplications = [self.allowedContentTypes isEqual:@[ UTTypeApplicationBundle ]];
    mac().panels.push_back(std::string(self.allowsMultipleSelection ? "several " : "one ") +
                           (onlyApplications ? "application" : "file") +
                           (self.canChooseDirectories ? " or folder" : "") + " in " +
                           [[self.directoryURL path] UTF8String] + ", " + [self.prompt UTF8String]);
    return mac().panelChoice ? 1 : 0;
}
- (NSArray*)URLs {
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
    if (isInWindow) {
        view->ownWindow = [[TSLFakeWindow alloc] init];
        view->ownWindow.hasShadow = YES;
    }
    m_view = view;
}

View::~View() {
    [(TSLFakeView*)m_view release];
}

WindowSight View::window() const {
    TSLFakeWindow* const window = ((TSLFakeView*)m_view)->ownWindow;
    return {window.level, window.collectionBehavior, window.ignoresMouseEvents != NO, window.hasShadow != NO};
}

} // namespace tessarel::fakemac
