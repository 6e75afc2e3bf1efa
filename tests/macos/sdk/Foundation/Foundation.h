// SPDX-License-Identifier: MIT

#pragma once

#ifndef __APPLE__
#include_next <Foundation/Foundation.h>
#else
#include <CoreFoundation/CoreFoundation.h>

#if __has_feature(objc_bool)
typedef bool BOOL;
#else
typedef signed char BOOL;
#endif
#define YES __objc_yes
#define NO __objc_no
#define nil nullptr
typedef long NSInteger;
typedef unsigned long NSUInteger;
typedef CGRect NSRect;
typedef CGPoint NSPoint;
typedef CGSize NSSize;
typedef NSUInteger NSStringEncoding;
enum : NSStringEncoding {
    NSUTF8StringEncoding = 4,
    NSISOLatin1StringEncoding = 5,
};

@class NSArray, NSDictionary, NSString;

@protocol NSObject
@property(readonly) NSUInteger hash;
- (BOOL)isEqual:(id)other;
- (BOOL)isKindOfClass:(Class)type;
- (instancetype)retain;
- (oneway void)release;
@end

@protocol NSCopying
@end

typedef struct NSFastEnumerationState {
    unsigned long state;
    id __unsafe_unretained* itemsPtr;
    unsigned long* mutationsPtr;
    unsigned long extra[5];
} NSFastEnumerationState;
@protocol NSFastEnumeration
- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState*)state
                                  objects:(id __unsafe_unretained[])buffer
                                    count:(NSUInteger)count;
@end

__attribute__((objc_root_class))
@interface NSObject<NSObject>
+ (instancetype)alloc;
+ (Class)class;
- (instancetype)init;
- (void)dealloc;
@end

@interface NSString : NSObject <NSCopying>
@property(readonly) const char* UTF8String;
- (instancetype)initWithBytes:(const void*)bytes
                       length:(NSUInteger)length
                     encoding:(NSStringEncoding)encoding;
@end

SDK_EXTERN SEL NSSelectorFromString(NSString* name);

@interface NSNumber : NSObject <NSCopying>
@property(readonly) BOOL boolValue;
@property(readonly) double doubleValue;
@property(readonly) long long longLongValue;
@property(readonly) unsigned long long unsignedLongLongValue;
+ (NSNumber*)numberWithBool:(BOOL)value;
+ (NSNumber*)numberWithDouble:(double)value;
@end

@interface NSArray : NSObject <NSCopying, NSFastEnumeration>
@property(readonly) NSUInteger count;
@property(readonly) id firstObject;
+ (instancetype)arrayWithObjects:(const id[])objects count:(NSUInteger)count;
@end

@interface NSDictionary : NSObject <NSCopying, NSFastEnumeration>
- (id)objectForKey:(id)key;
+ (instancetype)dictionaryWithObjects:(const id[])objects
                              forKeys:(const id<NSCopying>[])keys
                                count:(NSUInteger)count;
@end

@interface NSData : NSObject <NSCopying>
@property(readonly) NSUInteger length;
@property(readonly) const void* bytes;
+ (instancetype)dataWithBytes:(const void*)bytes length:(NSUInteger)length;
@end

@interface NSError : NSObject
@property(readonly, copy) NSString* localizedDescription;
@end

@interface NSURL : NSObject
+ (instancetype)URLWithString:(NSString*)text;
+ (NSURL*)fileURLWithPath:(NSString*)path;
@property(readonly, copy) NSString* path;
@property(readonly, copy) NSString* scheme;
@end

@interface NSNotification : NSObject
@property(readonly, copy) NSDictionary* userInfo;
@end

@interface NSNotificationCenter : NSObject
@property(class, readonly, strong) NSNotificationCenter* defaultCenter;
- (void)addObserver:(id)observer selector:(SEL)selector name:(NSString*)name object:(id)object;
- (void)removeObserver:(id)observer;
@end

typedef NSUInteger NSNotificationSuspensionBehavior;
enum : NSUInteger { NSNotificationSuspensionBehaviorDeliverImmediately = 4 };
@interface NSDistributedNotificationCenter : NSNotificationCenter
+ (NSDistributedNotificationCenter*)defaultCenter;
- (void)addObserver:(id)observer
              selector:(SEL)selector
                  name:(NSString*)name
                object:(NSString*)object
    suspensionBehavior:(NSNotificationSuspensionBehavior)behavior;
- (void)postNotificationName:(NSString*)name
                      object:(NSString*)object
                    userInfo:(NSDictionary*)userInfo
          deliverImmediately:(BOOL)immediately;
@end

@interface NSUserDefaults : NSObject
@property(class, readonly, strong) NSUserDefaults* standardUserDefaults;
- (NSData*)dataForKey:(NSString*)key;
- (void)setObject:(id)value forKey:(NSString*)key;
@end

@interface NSBundle : NSObject
@property(class, readonly, strong) NSBundle* mainBundle;
+ (NSBundle*)bundleWithURL:(NSURL*)url;
@property(readonly, copy) NSString* bundleIdentifier;
@end

@interface NSProcessInfo : NSObject
@property(class, readonly, strong) NSProcessInfo* processInfo;
@property(readonly) int processIdentifier;
@property(readonly, copy) NSString* globallyUniqueString;
@end

@interface NSFileManager : NSObject
@property(class, readonly, strong) NSFileManager* defaultManager;
- (NSString*)displayNameAtPath:(NSString*)path;
@end

@interface NSAppleEventDescriptor : NSObject
@end

@interface NSAppleEventManager : NSObject
@end
#endif
