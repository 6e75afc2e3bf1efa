// SPDX-License-Identifier: MIT

#pragma once

#include <stddef.h>
#include <stdint.h>
#include <sys/types.h>

#ifdef __cplusplus
#define SDK_EXTERN extern "C"
#else
#define SDK_EXTERN extern
#endif
#define SDK_SINCE(version) __attribute__((availability(macos, introduced = version)))
#define SDK_BRIDGED(type) __attribute__((objc_bridge(type)))
#define SDK_RETAINED __attribute__((cf_returns_retained))

typedef unsigned char Boolean;
typedef uint32_t UInt32;
typedef int32_t OSStatus;
typedef uint32_t OSType;
typedef long CFIndex;
typedef unsigned long CFTypeID;
typedef unsigned long CFHashCode;

typedef const void* CFTypeRef;
typedef const struct SDK_BRIDGED(NSString) __CFString* CFStringRef;
typedef const struct SDK_BRIDGED(NSArray) __CFArray* CFArrayRef;
typedef const struct SDK_BRIDGED(NSDictionary) __CFDictionary* CFDictionaryRef;
typedef const struct SDK_BRIDGED(NSNumber) __CFBoolean* CFBooleanRef;
typedef struct __CFRunLoop* CFRunLoopRef;
typedef struct __CFRunLoopSource* CFRunLoopSourceRef;
typedef CFStringRef CFRunLoopMode;

#ifdef __APPLE__
typedef double CGFloat;
typedef struct CGPoint {
    CGFloat x;
    CGFloat y;
} CGPoint;
typedef struct CGSize {
    CGFloat width;
    CGFloat height;
} CGSize;
typedef struct CGRect {
    CGPoint origin;
    CGSize size;
} CGRect;
#define CFSTR(text) ((CFStringRef)__builtin___CFStringMakeConstantString("" text ""))
#else
// On macOS the NS and CG geometry types are the same types; here only Foundation's exist.
#import <Foundation/NSGeometry.h>
typedef NSPoint CGPoint;
typedef NSSize CGSize;
typedef NSRect CGRect;
#define CFSTR(text) ((__bridge CFStringRef) @"" text)
#endif

SDK_EXTERN CFTypeRef _Nonnull CFRetain(CFTypeRef _Nonnull object);
SDK_EXTERN void CFRelease(CFTypeRef _Nonnull object);
SDK_EXTERN Boolean CFEqual(CFTypeRef _Nonnull first, CFTypeRef _Nonnull second);
SDK_EXTERN CFHashCode CFHash(CFTypeRef _Nonnull object);
SDK_EXTERN CFTypeID CFGetTypeID(CFTypeRef _Nonnull object);
SDK_EXTERN CFTypeID CFStringGetTypeID(void);
SDK_EXTERN CFTypeID CFArrayGetTypeID(void);
SDK_EXTERN CFTypeID CFBooleanGetTypeID(void);
SDK_EXTERN CFTypeID CFNumberGetTypeID(void);

SDK_EXTERN const CFBooleanRef _Nonnull kCFBooleanTrue;
SDK_EXTERN const CFBooleanRef _Nonnull kCFBooleanFalse;

SDK_EXTERN CFIndex CFArrayGetCount(CFArrayRef _Nonnull array);
SDK_EXTERN const void* _Nullable CFArrayGetValueAtIndex(CFArrayRef _Nonnull array, CFIndex index);

SDK_EXTERN const CFRunLoopMode _Nonnull kCFRunLoopDefaultMode;
SDK_EXTERN const CFRunLoopMode _Nonnull kCFRunLoopCommonModes;
SDK_EXTERN CFRunLoopRef _Nonnull CFRunLoopGetMain(void);
SDK_EXTERN void CFRunLoopAddSource(CFRunLoopRef _Nonnull loop, CFRunLoopSourceRef _Nonnull source,
                                   CFRunLoopMode _Nonnull mode);
SDK_EXTERN void CFRunLoopRemoveSource(CFRunLoopRef _Nonnull loop, CFRunLoopSourceRef _Nonnull source,
                                      CFRunLoopMode _Nonnull mode);

typedef int32_t CFRunLoopRunResult;
enum : CFRunLoopRunResult {
    kCFRunLoopRunTimedOut = 3,
    kCFRunLoopRunHandledSource = 4,
};
typedef double CFTimeInterval;
SDK_EXTERN CFRunLoopRunResult CFRunLoopRunInMode(CFRunLoopMode _Nonnull mode, CFTimeInterval seconds,
                                                 Boolean returnAfterSourceHandled);
