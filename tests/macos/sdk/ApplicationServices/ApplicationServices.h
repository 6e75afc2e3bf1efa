// SPDX-License-Identifier: MIT

#pragma once

#include <CoreGraphics/CoreGraphics.h>

enum : uint32_t { kCoreEventClass = 'aevt', kAEReopenApplication = 'rapp' };

typedef int32_t AXError;
enum : int32_t {
    kAXErrorSuccess = 0,
    kAXErrorFailure = -25200,
    kAXErrorIllegalArgument = -25201,
    kAXErrorInvalidUIElement = -25202,
    kAXErrorCannotComplete = -25204,
    kAXErrorAttributeUnsupported = -25205,
    kAXErrorNotificationUnsupported = -25207,
    kAXErrorNotificationAlreadyRegistered = -25209,
    kAXErrorNotificationNotRegistered = -25210,
    kAXErrorAPIDisabled = -25211,
    kAXErrorNoValue = -25212,
};

typedef const struct SDK_BRIDGED(id) __AXUIElement* AXUIElementRef;
typedef const struct SDK_BRIDGED(id) __AXValue* AXValueRef;
typedef struct SDK_BRIDGED(id) __AXObserver* AXObserverRef;
typedef uint32_t AXValueType;
enum : uint32_t { kAXValueTypeCGPoint = 1, kAXValueTypeCGSize = 2, kAXValueTypeCGRect = 3 };
typedef void (*AXObserverCallback)(AXObserverRef _Nonnull observer, AXUIElementRef _Nonnull element,
                                   CFStringRef _Nonnull notification, void* _Nullable context);

SDK_EXTERN const CFStringRef _Nonnull kAXTrustedCheckOptionPrompt SDK_SINCE(10.9);
SDK_EXTERN Boolean AXIsProcessTrusted(void);
SDK_EXTERN Boolean AXIsProcessTrustedWithOptions(CFDictionaryRef _Nullable options) SDK_SINCE(10.9);

SDK_EXTERN CFTypeID AXUIElementGetTypeID(void);
SDK_EXTERN AXUIElementRef _Nonnull AXUIElementCreateApplication(pid_t pid) SDK_RETAINED;
SDK_EXTERN AXUIElementRef _Nonnull AXUIElementCreateSystemWide(void) SDK_RETAINED;
SDK_EXTERN AXError AXUIElementCopyAttributeValue(AXUIElementRef _Nonnull element,
                                                 CFStringRef _Nonnull attribute,
                                                 CFTypeRef _Nullable* _Nonnull SDK_RETAINED value);
SDK_EXTERN AXError AXUIElementSetAttributeValue(AXUIElementRef _Nonnull element,
                                                CFStringRef _Nonnull attribute, CFTypeRef _Nonnull value);
SDK_EXTERN AXError AXUIElementCopyElementAtPosition(AXUIElementRef _Nonnull application, float x, float y,
                                                    AXUIElementRef _Nullable* _Nonnull SDK_RETAINED element);
SDK_EXTERN AXError AXUIElementGetPid(AXUIElementRef _Nonnull element, pid_t* _Nonnull pid);
SDK_EXTERN AXError AXUIElementSetMessagingTimeout(AXUIElementRef _Nonnull element, float seconds);

SDK_EXTERN CFTypeID AXValueGetTypeID(void);
SDK_EXTERN AXValueRef _Nullable AXValueCreate(AXValueType type, const void* _Nonnull value) SDK_RETAINED;
SDK_EXTERN AXValueType AXValueGetType(AXValueRef _Nonnull value);
SDK_EXTERN Boolean AXValueGetValue(AXValueRef _Nonnull value, AXValueType type, void* _Nonnull result);

SDK_EXTERN AXError AXObserverCreate(pid_t pid, AXObserverCallback _Nonnull callback,
                                    AXObserverRef _Nullable* _Nonnull SDK_RETAINED observer);
SDK_EXTERN AXError AXObserverAddNotification(AXObserverRef _Nonnull observer, AXUIElementRef _Nonnull element,
                                             CFStringRef _Nonnull notification, void* _Nullable context);
SDK_EXTERN AXError AXObserverRemoveNotification(AXObserverRef _Nonnull observer,
                                                AXUIElementRef _Nonnull element,
                                                CFStringRef _Nonnull notification);
SDK_EXTERN CFRunLoopSourceRef _Nonnull AXObserverGetRunLoopSource(AXObserverRef _Nonnull observer);
