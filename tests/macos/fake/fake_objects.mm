// SPDX-License-Identifier: MIT

#include "macos/fake/fake_objects.h"

#include <cstdlib>

// Core Foundation over Foundation: every reference is a pointer to an Objective-C object.

namespace {

enum : CFTypeID { kOther = 1, kString = 7, kArray = 19, kBoolean = 21, kNumber = 22 };

long liveObjects = 0;

int mainLoop = 0;

std::string nameOf(CFRunLoopMode mode) {
    return [(__bridge NSString*)mode UTF8String];
}

/// Returns the source; aborts for any run loop but the main one.
TSLFakeSource* checked(CFRunLoopRef loop, CFRunLoopSourceRef source) {
    if (loop != CFRunLoopGetMain())
        abort();
    return (TSLFakeSource*)source;
}

} // namespace

namespace tessarel::fakemac {

Counted::Counted() {
    ++liveObjects;
}
Counted::~Counted() {
    --liveObjects;
}

} // namespace tessarel::fakemac

@implementation TSLFakeObject
- (instancetype)init {
    if ((self = [super init]))
        ++liveObjects;
    return self;
}
- (void)dealloc {
    --liveObjects;
    [super dealloc];
}
- (CFTypeID)fakeTypeID {
    return kOther;
}
@end

@implementation TSLFakeElement
- (CFTypeID)fakeTypeID {
    return AXUIElementGetTypeID();
}
- (NSUInteger)hash {
    return static_cast<NSUInteger>(kind) * 1000003U + static_cast<NSUInteger>(pid) * 31U +
           window * 2654435761U;
}
- (BOOL)isEqual:(id)other {
    if (![other isKindOfClass:[TSLFakeElement class]])
        return NO;
    TSLFakeElement* const element = other;
    return element->kind == kind && element->pid == pid && element->window == window;
}
@end

@implementation TSLFakeValue
- (CFTypeID)fakeTypeID {
    return AXValueGetTypeID();
}
@end

@implementation TSLFakeSource
@end

@implementation TSLFakeArray
- (instancetype)init {
    if ((self = [super init]))
        ++liveObjects;
    return self;
}
- (void)dealloc {
    --liveObjects;
    for (id entry : entries)
        [entry release];
    [super dealloc];
}
- (NSUInteger)count {
    return entries.size();
}
- (id)objectAtIndex:(NSUInteger)index {
    return entries.at(index);
}
@end

@implementation TSLFakeString
- (instancetype)init {
    if ((self = [super init]))
        ++liveObjects;
    return self;
}
- (void)dealloc {
    --liveObjects;
    [super dealloc];
}
- (NSUInteger)length {
    return text.size();
}
- (unichar)characterAtIndex:(NSUInteger)index {
    return static_cast<unsigned char>(text.at(index));
}
@end

namespace tessarel::fakemac {

TSLFakeElement* newElement(FakeElementKind kind, pid_t pid, WindowNumber window) {
    TSLFakeElement* const element = [[TSLFakeElement alloc] init];
    element->kind = kind;
    element->pid = pid;
    element->window = window;
    return element;
}

TSLFakeString* newString(const std::string& text) {
    TSLFakeString* const string = [[TSLFakeString alloc] init];
    string->text = text;
    return string;
}

TSLFakeArray* newArray(std::vector<id> entries) {
    TSLFakeArray* const array = [[TSLFakeArray alloc] init];
    array->entries = std::move(entries);
    return array;
}

NSString* autoreleased(const std::string& text) {
    return [NSString stringWithUTF8String:text.c_str()];
}

bool isServed(TSLFakeSource* source) {
    const bool always = source->modes.contains(nameOf(kCFRunLoopCommonModes));
    return always || (mac().loopMode == LoopMode::Default && !source->modes.empty());
}

void describeObjects(std::vector<std::string>& lines) {
    if (liveObjects != 0)
        lines.push_back(std::to_string(liveObjects) + " objects");
}

} // namespace tessarel::fakemac

// The two constants are objects, which can be created only once the runtime has loaded their class. So they
// are variables here, exported under the constants' names.
extern "C" {
id fakeTrue __asm__("kCFBooleanTrue");
id fakeFalse __asm__("kCFBooleanFalse");
}
@interface TSLFakeBooleans : NSObject
@end
@implementation TSLFakeBooleans
+ (void)load {
    fakeTrue = [[NSNumber alloc] initWithBool:YES];
    fakeFalse = [[NSNumber alloc] initWithBool:NO];
}
@end

const CFRunLoopMode kCFRunLoopDefaultMode = CFSTR("kCFRunLoopDefaultMode");
const CFRunLoopMode kCFRunLoopCommonModes = CFSTR("kCFRunLoopCommonModes");

CFTypeRef CFRetain(CFTypeRef object) {
    tessarel::fakemac::checkThread();
    if (!object)
        abort();
    return (CFTypeRef)[(id)object retain];
}

void CFRelease(CFTypeRef object) {
    tessarel::fakemac::checkThread();
    if (!object)
        abort();
    [(id)object release];
}

Boolean CFEqual(CFTypeRef first, CFTypeRef second) {
    tessarel::fakemac::checkThread();
    return [(id)first isEqual:(id)second] ? 1 : 0;
}

CFHashCode CFHash(CFTypeRef object) {
    tessarel::fakemac::checkThread();
    return [(id)object hash];
}

CFTypeID CFGetTypeID(CFTypeRef reference) {
    tessarel::fakemac::checkThread();
    if (!reference)
        abort();
    const id object = (id)reference;
    if ([object isKindOfClass:[TSLFakeObject class]])
        return [(TSLFakeObject*)object fakeTypeID];
    if ([object isKindOfClass:[NSString class]])
        return kString;
    if ([object isKindOfClass:[NSArray class]])
        return kArray;
    if (object == fakeTrue || object == fakeFalse)
        return kBoolean;
    return [object isKindOfClass:[NSNumber class]] ? kNumber : kOther;
}

CFTypeID CFStringGetTypeID() {
    tessarel::fakemac::checkThread();
    return kString;
}
CFTypeID CFArrayGetTypeID() {
    tessarel::fakemac::checkThread();
    return kArray;
}
CFTypeID CFBooleanGetTypeID() {
    tessarel::fakemac::checkThread();
    return kBoolean;
}
CFTypeID CFNumberGetTypeID() {
    tessarel::fakemac::checkThread();
    return kNumber;
}

CFIndex CFArrayGetCount(CFArrayRef array) {
    tessarel::fakemac::checkThread();
    return static_cast<CFIndex>([(NSArray*)array count]);
}
const void* CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index) {
    tessarel::fakemac::checkThread();
    return (const void*)[(NSArray*)array objectAtIndex:static_cast<NSUInteger>(index)];
}

CFRunLoopRef CFRunLoopGetMain() {
    tessarel::fakemac::checkThread();
    return reinterpret_cast<CFRunLoopRef>(&mainLoop);
}
void CFRunLoopAddSource(CFRunLoopRef loop, CFRunLoopSourceRef source, CFRunLoopMode mode) {
    tessarel::fakemac::checkThread();
    checked(loop, source)->modes.insert(nameOf(mode));
}
void CFRunLoopRemoveSource(CFRunLoopRef loop, CFRunLoopSourceRef source, CFRunLoopMode mode) {
    tessarel::fakemac::checkThread();
    checked(loop, source)->modes.erase(nameOf(mode));
}
