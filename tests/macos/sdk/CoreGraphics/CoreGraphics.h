// SPDX-License-Identifier: MIT

#pragma once

#include <CoreFoundation/CoreFoundation.h>

typedef uint32_t CGWindowID;
typedef uint32_t CGWindowListOption;
enum : uint32_t {
    kCGWindowListOptionOnScreenOnly = 1U << 0,
    kCGWindowListExcludeDesktopElements = 1U << 4,
};
enum : uint32_t { kCGNullWindowID = 0 };

SDK_EXTERN const CFStringRef _Nonnull kCGWindowLayer;
SDK_EXTERN const CFStringRef _Nonnull kCGWindowOwnerPID;
SDK_EXTERN const CFStringRef _Nonnull kCGWindowBounds;
SDK_EXTERN const CFStringRef _Nonnull kCGWindowAlpha;

SDK_EXTERN CFArrayRef _Nullable CGWindowListCopyWindowInfo(CGWindowListOption options,
                                                           CGWindowID relativeTo) SDK_RETAINED;
SDK_EXTERN bool CGRectMakeWithDictionaryRepresentation(CFDictionaryRef _Nullable dictionary,
                                                       CGRect* _Nonnull rect);
