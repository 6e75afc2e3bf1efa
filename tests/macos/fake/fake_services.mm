// SPDX-License-Identifier: MIT

#include "macos/fake/fake_objects.h"

#import <AppKit/AppKit.h>
#import <ServiceManagement/ServiceManagement.h>
#include <cstdlib>
#include <libproc.h>

// The window server's list, user defaults, bundles, login items, process information and Apple events.

using namespace tessarel;
using namespace tessarel::fakemac;

const CFStringRef kCGWindowLayer = CFSTR("kCGWindowLayer");
const CFStringRef kCGWindowOwnerPID = CFSTR("kCGWindowOwnerPID");
const CFStringRef kCGWindowBounds = CFSTR("kCGWindowBounds");
const CFStringRef kCGWindowAlpha = CFSTR("kCGWindowAlpha");

namespace {

NSDictionary* listed(const Window& window) {
    const Rect& axFrame = window.axFrame;
    NSMutableDictionary* const entry = [NSMutableDictionary dictionary];
    [entry setObject:[NSNumber numberWithInt:window.layer] forKey:(NSString*)kCGWindowLayer];
    [entry setObject:[NSNumber numberWithInt:window.pid] forKey:(NSString*)kCGWindowOwnerPID];
    [entry setObject:[NSNumber numberWithDouble:window.alpha] forKey:(NSString*)kCGWindowAlpha];
    [entry setObject:@{
        @"X" : [NSNumber numberWithDouble:axFrame.x],
        @"Y" : [NSNumber numberWithDouble:axFrame.y],
        @"Width" : [NSNumber numberWithDouble:axFrame.width],
        @"Height" : [NSNumber numberWithDouble:axFrame.height]
    }
              forKey:(NSString*)kCGWindowBounds];
    for (const std::string& key : window.mislisted)
        [entry setObject:@"a text" forKey:autoreleased(key)];
    for (const std::string& key : window.unlisted)
        [entry removeObjectForKey:autoreleased(key)];
    return entry;
}

} // namespace

CFArrayRef CGWindowListCopyWindowInfo(CGWindowListOption options, CGWindowID relativeTo) {
    checkThread();
    constexpr CGWindowListOption kOnScreen = 1;
    constexpr CGWindowListOption kWithoutDesktop = 16;
    if (!mac().windowServerAnswers || relativeTo != 0)
        return nullptr;
    @autoreleasepool {
        std::vector<id> entries;
        for (const WindowNumber number : mac().stacking) {
            const Window& window = mac().windows.at(number);
            if (!window.minimized || (options & kOnScreen) == 0)
                entries.push_back([listed(window) retain]);
        }
        if ((options & kWithoutDesktop) == 0) // the desktop's own window is at the bottom
            entries.push_back([listed({.pid = 1, .layer = -2147483623}) retain]);
        if (mac().listsAText)
            entries.push_back(newString("a text"));
        return (CFArrayRef)newArray(std::move(entries));
    }
}

bool CGRectMakeWithDictionaryRepresentation(CFDictionaryRef dictionary, CGRect* rect) {
    checkThread();
    NSDictionary* const values = (NSDictionary*)dictionary;
    for (NSString* key in @[ @"X", @"Y", @"Width", @"Height" ]) {
        if (![[values objectForKey:key] isKindOfClass:[NSNumber class]])
            return false;
    }
    *rect = NSMakeRect([[values objectForKey:@"X"] doubleValue], [[values objectForKey:@"Y"] doubleValue],
                       [[values objectForKey:@"Width"] doubleValue],
                       [[values objectForKey:@"Height"] doubleValue]);
    return true;
}

// GNUstep's Foundation describes the machine that the test runs on. These categories describe the fake Mac.
#pragma clang diagnostic ignored "-Wobjc-protocol-method-implementation"

@interface NSFileManager (TSLFake)
@end
@implementation NSFileManager (TSLFake)
- (NSString*)displayNameAtPath:(NSString*)path {
    checkThread();
    return [path lastPathComponent];
}
@end

@interface TSLFakeDefaults : NSUserDefaults
@end
@implementation TSLFakeDefaults
- (instancetype)init {
    return self; // NSUserDefaults would read files
}
- (id)objectForKey:(NSString*)key {
    checkThread();
    const auto found = mac().defaults.find([key UTF8String]);
    if (found == mac().defaults.end())
        return nil;
    return [NSData dataWithBytes:found->second.data() length:found->second.size()];
}
- (NSData*)dataForKey:(NSString*)key {
    checkThread();
    return [self objectForKey:key];
}
- (void)setObject:(id)value forKey:(NSString*)key {
    checkThread();
    NSData* const data = value;
    mac().defaults[[key UTF8String]] = std::string(static_cast<const char*>([data bytes]), [data length]);
}
@end

@interface NSUserDefaults (TSLFake)
@end
@implementation NSUserDefaults (TSLFake)
+ (NSUserDefaults*)standardUserDefaults {
    checkThread();
    static TSLFakeDefaults* const defaults = [[TSLFakeDefaults alloc] init];
    return defaults;
}
@end

/// The bundle of an installed application.
@interface TSLFakeBundle : NSBundle {
@public
    std::string identifier;
}
@end
@implementation TSLFakeBundle
- (instancetype)init {
    return self; // NSBundle would read files
}
- (NSString*)bundleIdentifier {
    checkThread();
    return identifier.empty() ? nil : autoreleased(identifier);
}
@end

@interface NSBundle (TSLFake)
@end
@implementation NSBundle (TSLFake)
+ (instancetype)bundleWithURL:(NSURL*)url {
    checkThread();
    const auto found = mac().bundles.find([[url path] UTF8String]);
    if (found == mac().bundles.end())
        return nil;
    TSLFakeBundle* const bundle = [[[TSLFakeBundle alloc] init] autorelease];
    bundle->identifier = found->second;
    return bundle;
}
- (NSString*)bundleIdentifier {
    checkThread();
    return mac().ownBundleIdentifier ? autoreleased(*mac().ownBundleIdentifier) : nil;
}
@end

@interface NSProcessInfo (TSLFake)
@end
@implementation NSProcessInfo (TSLFake)
- (int)processIdentifier {
    checkThread();
    return mac().ownPid;
}
@end

@interface TSLFakeError : NSError
@end
@implementation TSLFakeError
- (NSString*)localizedDescription {
    checkThread();
    return autoreleased(*mac().loginItemRefusal);
}
@end

@implementation SMAppService
+ (SMAppService*)mainAppService {
    checkThread();
    static SMAppService* const service = [[SMAppService alloc] init];
    return service;
}
- (SMAppServiceStatus)status {
    checkThread();
    return mac().loginItemStatus;
}
- (BOOL)changeTo:(SMAppServiceStatus)status error:(NSError**)error {
    checkThread();
    ++mac().loginItemChanges;
    if (mac().loginItemRefusal) {
        *error = [[[TSLFakeError alloc] initWithDomain:@"SMAppServiceErrorDomain" code:1
                                              userInfo:nil] autorelease];
        return NO;
    }
    mac().loginItemStatus = status;
    return YES;
}
- (BOOL)registerAndReturnError:(NSError**)error {
    checkThread();
    return [self changeTo:SMAppServiceStatusEnabled error:error];
}
- (BOOL)unregisterAndReturnError:(NSError**)error {
    checkThread();
    return [self changeTo:SMAppServiceStatusNotRegistered error:error];
}
@end

int proc_pidinfo(int pid, int flavor, uint64_t argument, void* buffer, int size) {
    checkThread();
    const auto found = mac().applications.find(pid);
    if (flavor != 3 || argument != 0 || size != static_cast<int>(sizeof(proc_bsdinfo)))
        abort();
    if (pid <= 0 || found == mac().applications.end())
        return 0;
    constexpr std::uint64_t kMicrosecondsPerSecond = 1'000'000;
    *static_cast<proc_bsdinfo*>(buffer) = {found->second.startedAt / kMicrosecondsPerSecond,
                                           found->second.startedAt % kMicrosecondsPerSecond};
    return size;
}

NSString* const NSApplicationDidFinishLaunchingNotification = @"NSApplicationDidFinishLaunchingNotification";

namespace {

/// The handler of the reopen event, which is not retained. Empty: AppKit's own handler.
struct Reopening {
    id target = nil;
    SEL selector = nullptr;
};
Reopening reopening;

void checkIsReopening(uint32_t eventClass, uint32_t eventID) {
    if (eventClass != 0x61657674 || eventID != 0x72617070)
        abort();
}

} // namespace

@implementation NSAppleEventManager (Events)
+ (NSAppleEventManager*)sharedAppleEventManager {
    checkThread();
    static NSAppleEventManager* const manager = [[NSAppleEventManager alloc] init];
    return manager;
}
- (void)setEventHandler:(id)handler
            andSelector:(SEL)selector
          forEventClass:(uint32_t)eventClass
             andEventID:(uint32_t)eventID {
    checkThread();
    checkIsReopening(eventClass, eventID);
    reopening = {handler, selector};
}
- (void)removeEventHandlerForEventClass:(uint32_t)eventClass andEventID:(uint32_t)eventID {
    checkThread();
    checkIsReopening(eventClass, eventID);
    reopening = {};
}
@end

namespace tessarel::fakemac {

bool openAgain() {
    checkThread();
    @autoreleasepool {
        if (!reopening.target)
            return false;
        NSAppleEventDescriptor* const event = [[[NSAppleEventDescriptor alloc] init] autorelease];
        [reopening.target performSelector:reopening.selector withObject:event withObject:event];
        return true;
    }
}

void finishLaunching() {
    @autoreleasepool {
        reopening = {}; // AppKit sets its own handler
        [[NSNotificationCenter defaultCenter] postNotificationName:NSApplicationDidFinishLaunchingNotification
                                                            object:nil];
    }
}

void describeReopening(std::vector<std::string>& lines) {
    if (reopening.target)
        lines.push_back("a handler for opening again");
}

void resetReopening() {
    reopening = {};
}

} // namespace tessarel::fakemac
