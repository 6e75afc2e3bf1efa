// SPDX-License-Identifier: MIT

#pragma once

#include <ApplicationServices/ApplicationServices.h>

typedef struct OpaqueEventRef* EventRef;
typedef struct OpaqueEventTargetRef* EventTargetRef;
typedef struct OpaqueEventHandlerRef* EventHandlerRef;
typedef struct OpaqueEventHandlerCallRef* EventHandlerCallRef;
typedef struct OpaqueEventHotKeyRef* EventHotKeyRef;
typedef OSType EventParamName;
typedef OSType EventParamType;
typedef UInt32 OptionBits;
typedef unsigned long ByteCount;
typedef unsigned long ItemCount;

typedef struct EventTypeSpec {
    OSType eventClass;
    UInt32 eventKind;
} EventTypeSpec;
typedef struct EventHotKeyID {
    OSType signature;
    UInt32 id;
} EventHotKeyID;
typedef OSStatus (*EventHandlerUPP)(EventHandlerCallRef _Nullable call, EventRef _Nullable event,
                                    void* _Nullable userData);

enum : int32_t {
    noErr = 0,
    eventNotHandledErr = -9874,
    eventHotKeyExistsErr = -9878,
    eventHotKeyInvalidErr = -9879,
};
enum : uint32_t {
    kEventClassKeyboard = 'keyb',
    kEventParamDirectObject = '----',
    typeEventHotKeyID = 'hkid',
    kEventHotKeyPressed = 5,
};

SDK_EXTERN EventTargetRef _Nonnull GetApplicationEventTarget(void);
SDK_EXTERN OSStatus InstallEventHandler(EventTargetRef _Nonnull target, EventHandlerUPP _Nonnull handler,
                                        ItemCount typeCount, const EventTypeSpec* _Nonnull types,
                                        void* _Nullable userData,
                                        EventHandlerRef _Nullable* _Nullable result);
SDK_EXTERN OSStatus RemoveEventHandler(EventHandlerRef _Nonnull handler);
SDK_EXTERN OSStatus RegisterEventHotKey(UInt32 keyCode, UInt32 modifiers, EventHotKeyID hotKey,
                                        EventTargetRef _Nonnull target, OptionBits options,
                                        EventHotKeyRef _Nullable* _Nonnull result);
SDK_EXTERN OSStatus UnregisterEventHotKey(EventHotKeyRef _Nonnull hotKey);
SDK_EXTERN OSStatus GetEventParameter(EventRef _Nonnull event, EventParamName name, EventParamType type,
                                      EventParamType* _Nullable actualType, ByteCount size,
                                      ByteCount* _Nullable actualSize, void* _Nullable result);
