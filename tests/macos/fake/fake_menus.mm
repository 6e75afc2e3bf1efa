// SPDX-License-Identifier: MIT

#include "macos/fake/fake_menus.h"

#include "macos/fake/fake_objects.h"
#include "macos/fake/fake_windows.h"

#import <AppKit/AppKit.h>
#include <algorithm>
#include <memory>
#include <utility>

// Menus, the status bar, and the application object.

using namespace tessarel;
using namespace tessarel::fakemac;

// The declared classes have no instance variables; they create instances of these subclasses.

@interface TSLFakeImage : NSImage {
    Counted counted;
    BOOL isTemplate;
@public
    std::string name;
    std::string description;
}
@end

@interface TSLFakeMenuItem : NSMenuItem {
    Counted counted;
    id target;
    SEL action;
    id representedObject;
    BOOL enabled;
    NSControlStateValue state;
    NSMenu* submenu;
    NSString* keyEquivalent;
    NSEventModifierFlags keyEquivalentModifierMask;
@public
    std::string title;
    BOOL isSeparator;
}
@property(assign) id target;
@property SEL action;
@property(strong) id representedObject;
@property(getter=isEnabled) BOOL enabled;
@property NSControlStateValue state;
@property(strong) NSMenu* submenu;
@property(copy) NSString* keyEquivalent;
@property NSEventModifierFlags keyEquivalentModifierMask;
@end

@interface TSLFakeMenu : NSMenu {
    Counted counted;
    BOOL autoenablesItems;
    id<NSMenuDelegate> delegate;
@public
    NSMutableArray* items;
}
@property BOOL autoenablesItems;
@property(assign) id<NSMenuDelegate> delegate;
@end

@interface TSLFakeButton : NSStatusBarButton {
    Counted counted;
    NSImage* image;
    NSString* title;
    BOOL appearsDisabled;
}
@property(strong) NSImage* image;
@property(copy) NSString* title;
@property BOOL appearsDisabled;
@end

@interface TSLFakeStatusItem : NSStatusItem {
    Counted counted;
    NSStatusBarButton* button;
    NSMenu* menu;
}
@property(strong) NSStatusBarButton* button;
@property(strong) NSMenu* menu;
@end

@interface TSLFakeApp : NSApplication {
    NSMenu* mainMenu;
}
@property(strong) NSMenu* mainMenu;
@end

namespace {

std::vector<NSStatusItem*> statusItemsUp;
std::size_t statusItemsForgotten = 0; // freed without removeStatusItem:

} // namespace

#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wincomplete-implementation"

@implementation NSImage
+ (NSImage*)imageWithSystemSymbolName:(NSString*)name accessibilityDescription:(NSString*)description {
    checkThread();
    if (!mac().symbols.contains([name UTF8String]))
        return nil;
    TSLFakeImage* const image = [[[TSLFakeImage alloc] init] autorelease];
    image->name = [name UTF8String];
    image->description = [description UTF8String];
    return image;
}
@end

@implementation NSMenuItem
@dynamic target, action, representedObject, enabled, state, submenu, keyEquivalent, keyEquivalentModifierMask;
+ (instancetype)alloc {
    return self == [NSMenuItem class] ? [TSLFakeMenuItem alloc] : [super alloc];
}
+ (NSMenuItem*)separatorItem {
    checkThread();
    TSLFakeMenuItem* const item = [[[TSLFakeMenuItem alloc] initWithTitle:@""
                                                                   action:nullptr
                                                            keyEquivalent:@""] autorelease];
    item->isSeparator = YES;
    return item;
}
@end

@implementation NSMenu
@dynamic autoenablesItems, delegate;
+ (instancetype)alloc {
    return self == [NSMenu class] ? [TSLFakeMenu alloc] : [super alloc];
}
@end

@implementation NSStatusBarButton
@dynamic image, title, appearsDisabled;
@end

@implementation NSStatusItem
@dynamic button, menu;
@end

@implementation NSApplication
@dynamic mainMenu;
+ (NSApplication*)sharedApplication {
    checkThread();
    static NSApplication* const application = [[TSLFakeApp alloc] init];
    return application;
}
- (BOOL)sendAction:(SEL)action to:(id)target from:(id)sender {
    checkThread();
    if (target || sender)
        abort(); // the back end sends actions along the responder chain only
    mac().actions.push_back([NSStringFromSelector(action) UTF8String]);
    return YES;
}
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)policy {
    checkThread();
    mac().activationPolicy = policy;
    return YES;
}
- (void)activateIgnoringOtherApps:(BOOL)ignoringOtherApps {
    checkThread();
    if (ignoringOtherApps) // otherwise only while no other application is active
        activateOwnProgram();
}
@end

#pragma clang diagnostic pop

@implementation TSLFakeImage
- (BOOL)isTemplate {
    checkThread();
    return isTemplate;
}
- (void)setTemplate:(BOOL)value {
    checkThread();
    isTemplate = value;
}
@end

@implementation TSLFakeMenuItem
TSL_ASSIGNED(id, target, setTarget)
TSL_ASSIGNED(SEL, action, setAction)
TSL_RETAINED(id, representedObject, setRepresentedObject)
TSL_ASSIGNED(NSControlStateValue, state, setState)
TSL_RETAINED(NSMenu*, submenu, setSubmenu)
TSL_COPIED(NSString*, keyEquivalent, setKeyEquivalent)
TSL_ASSIGNED(NSEventModifierFlags, keyEquivalentModifierMask, setKeyEquivalentModifierMask)
- (BOOL)isEnabled {
    checkThread();
    return enabled;
}
- (void)setEnabled:(BOOL)value {
    checkThread();
    enabled = value;
}
- (instancetype)initWithTitle:(NSString*)text action:(SEL)selector keyEquivalent:(NSString*)key {
    checkThread();
    if ((self = [super init])) {
        title = [text UTF8String]; // crashes for nil; AppKit raises an exception
        self.action = selector;
        self.keyEquivalent = key;
        self.keyEquivalentModifierMask = NSEventModifierFlagCommand;
        self.enabled = YES;
    }
    return self;
}
- (void)dealloc {
    self.representedObject = nil;
    self.submenu = nil;
    self.keyEquivalent = nil;
    [super dealloc];
}
@end

@implementation TSLFakeMenu
TSL_ASSIGNED(BOOL, autoenablesItems, setAutoenablesItems)
TSL_ASSIGNED(id<NSMenuDelegate>, delegate, setDelegate)
- (instancetype)initWithTitle:(NSString*)title {
    checkThread();
    if ((self = [super init]) && title) {
        items = [[NSMutableArray alloc] init];
        self.autoenablesItems = YES;
    }
    return self;
}
- (void)dealloc {
    [items release];
    [super dealloc];
}
- (void)addItem:(NSMenuItem*)item {
    checkThread();
    [items addObject:item];
}
- (void)removeAllItems {
    checkThread();
    [items removeAllObjects];
}
@end

@implementation TSLFakeButton
TSL_RETAINED(NSImage*, image, setImage)
TSL_COPIED(NSString*, title, setTitle)
TSL_ASSIGNED(BOOL, appearsDisabled, setAppearsDisabled)
- (void)dealloc {
    self.image = nil;
    self.title = nil;
    [super dealloc];
}
@end

@implementation TSLFakeStatusItem
TSL_RETAINED(NSStatusBarButton*, button, setButton)
TSL_RETAINED(NSMenu*, menu, setMenu)
- (instancetype)init {
    if ((self = [super init]) && mac().hasStatusButtons)
        self.button = [[[TSLFakeButton alloc] init] autorelease];
    return self;
}
- (void)dealloc {
    statusItemsForgotten += std::erase(statusItemsUp, self); // the status bar does not retain its items
    self.button = nil;
    self.menu = nil;
    [super dealloc];
}
@end

@implementation TSLFakeApp
TSL_RETAINED(NSMenu*, mainMenu, setMainMenu)
@end

@implementation NSStatusBar
+ (NSStatusBar*)systemStatusBar {
    checkThread();
    static NSStatusBar* const bar = [[NSStatusBar alloc] init];
    return bar;
}
- (NSStatusItem*)statusItemWithLength:(CGFloat)length {
    checkThread();
    if (length != -1) // NSVariableStatusItemLength
        abort();
    NSStatusItem* const item = [[[TSLFakeStatusItem alloc] init] autorelease];
    statusItemsUp.push_back(item);
    return item;
}
- (void)removeStatusItem:(NSStatusItem*)item {
    checkThread();
    if (std::erase(statusItemsUp, item) != 1)
        abort();
}
@end

namespace tessarel::fakemac {

namespace {

std::string textOf(NSString* text) {
    return text ? [text UTF8String] : "";
}

NSArray* itemsOf(NSMenu* menu) {
    return menu ? ((TSLFakeMenu*)menu)->items : nil;
}

/// Returns whether the item is enabled, either as set or by automatic enabling.
bool isOffered(NSMenu* menu, NSMenuItem* item) {
    if (!menu.autoenablesItems)
        return item.enabled;
    return item.submenu || [item.target respondsToSelector:item.action];
}

/// Returns the rows of the menu as the user sees them, without command and tag.
Menu sightOf(NSMenu* menu) {
    Menu rows;
    for (TSLFakeMenuItem* item in itemsOf(menu)) {
        MenuItem row;
        row.title = item->title;
        row.isSeparator = item->isSeparator;
        row.isEnabled = isOffered(menu, item);
        row.isChecked = item.state == NSControlStateValueOn;
        row.keyEquivalent = textOf(item.keyEquivalent);
        if (item.submenu)
            row.submenu = sightOf(item.submenu);
        rows.push_back(row);
    }
    return rows;
}

/// Returns the first enabled item with this title; nil when there is none.
NSMenuItem* itemCalled(NSMenu* menu, const std::string& title) {
    for (TSLFakeMenuItem* item in itemsOf(menu)) {
        if (item->title == title && isOffered(menu, item))
            return item;
    }
    return nil;
}

NSMenu* statusMenu() {
    return statusItemsUp.empty() ? nil : statusItemsUp.back().menu;
}

void perform(NSMenuItem* item) {
    checkThread();
    @autoreleasepool {
        [item.target performSelector:item.action withObject:item];
    }
}

void tellDelegate(NSMenu* menu, SEL selector) {
    checkThread();
    if ([(id)menu.delegate respondsToSelector:selector])
        [(id)menu.delegate performSelector:selector withObject:menu];
}

/// Closes the menu in the system's order: the delegate's `menuDidClose:`, the fade-out, then the action.
void closeAndPerform(NSMenuItem* item) {
    closeStatusMenu();
    letMenuFade();
    perform(item);
}

std::string keyOf(NSMenuItem* item) {
    if ([item.keyEquivalent length] == 0)
        return "";
    const bool withShift = (item.keyEquivalentModifierMask & NSEventModifierFlagShift) != 0;
    const bool withCommand = (item.keyEquivalentModifierMask & NSEventModifierFlagCommand) != 0;
    return std::string(" ") + (withShift ? "Shift+" : "") + (withCommand ? "Cmd+" : "") +
           textOf(item.keyEquivalent);
}

} // namespace

std::vector<StatusItemSight> statusItems() {
    @autoreleasepool {
        std::vector<StatusItemSight> sights;
        for (NSStatusItem* item : statusItemsUp) {
            NSStatusBarButton* const button = item.button;
            TSLFakeImage* const image = (TSLFakeImage*)button.image;
            StatusItemSight sight{.title = textOf(button.title),
                                  .appearsDisabled = button.appearsDisabled != NO};
            if (image) {
                sight.symbol = image->name;
                sight.description = image->description;
                sight.isTemplate = [image isTemplate] != NO;
            }
            sights.push_back(sight);
        }
        return sights;
    }
}

Menu openStatusMenu() {
    @autoreleasepool {
        NSMenu* const menu = statusMenu();
        mac().loopMode = LoopMode::EventTracking;
        tellDelegate(menu, @selector(menuNeedsUpdate:));
        return menu ? sightOf(menu) : Menu();
    }
}

void closeStatusMenu() {
    @autoreleasepool {
        if (std::exchange(mac().loopMode, LoopMode::Default) == LoopMode::EventTracking)
            tellDelegate(statusMenu(), @selector(menuDidClose:));
    }
}

std::function<void()> clickAt(const std::vector<std::string>& titles) {
    @autoreleasepool {
        NSMenu* menu = statusMenu();
        NSMenuItem* item = nil;
        for (const std::string& title : titles) {
            item = itemCalled(menu, title);
            menu = item.submenu;
        }
        if (!item.action)
            return nullptr;
        const std::shared_ptr<NSMenuItem> kept([item retain], [](NSMenuItem* one) { [one release]; });
        return [kept] { closeAndPerform(kept.get()); };
    }
}

std::vector<std::string> mainMenuRows() {
    @autoreleasepool {
        std::vector<std::string> lines;
        for (TSLFakeMenuItem* parent in itemsOf([NSApplication sharedApplication].mainMenu)) {
            for (TSLFakeMenuItem* item in itemsOf(parent.submenu))
                lines.push_back(parent->title + " > " +
                                (item->isSeparator ? "-" : item->title + keyOf(item)));
        }
        return lines;
    }
}

bool pressMenuKey(char key, bool withShift) {
    @autoreleasepool {
        const NSEventModifierFlags flags =
            NSEventModifierFlagCommand | (withShift ? NSEventModifierFlagShift : 0);
        for (TSLFakeMenuItem* parent in itemsOf([NSApplication sharedApplication].mainMenu)) {
            for (TSLFakeMenuItem* item in itemsOf(parent.submenu)) {
                if (textOf(item.keyEquivalent) != std::string(1, key) ||
                    item.keyEquivalentModifierMask != flags)
                    continue;
                perform(item);
                return true;
            }
        }
        return false;
    }
}

void describeStatusItems(std::vector<std::string>& lines) {
    if (!statusItemsUp.empty())
        lines.push_back(std::to_string(statusItemsUp.size()) + " status items");
    if (const std::size_t forgotten = std::exchange(statusItemsForgotten, 0); forgotten != 0)
        lines.push_back(std::to_string(forgotten) + " status items that nobody has taken down");
}

} // namespace tessarel::fakemac
