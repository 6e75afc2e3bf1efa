// SPDX-License-Identifier: MIT

#pragma once

#include "macos/fake/fake_mac.h"

#import <ApplicationServices/ApplicationServices.h>
#import <Foundation/Foundation.h>
#include <set>
#include <string>
#include <vector>

// The objects behind the references that the fake frameworks return. Each is counted as long as it exists.

namespace tessarel::fakemac {

/// Member of an object that has to be counted.
struct Counted {
    Counted();
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;
    ~Counted();
};

} // namespace tessarel::fakemac

@interface TSLFakeObject : NSObject
- (CFTypeID)fakeTypeID;
@end

enum class FakeElementKind { Desktop, Application, Window, Part };

@interface TSLFakeElement : TSLFakeObject {
@public
    FakeElementKind kind;
    pid_t pid;
    tessarel::fakemac::WindowNumber window;
    float timeLimit; // messaging timeout of this object in seconds; 0: the system-wide one applies
}
@end

@interface TSLFakeValue : TSLFakeObject {
@public
    AXValueType type;
    CGFloat first;
    CGFloat second;
}
@end

@interface TSLFakeSource : TSLFakeObject {
@public
    std::set<std::string> modes;
}
@end

@interface TSLFakeObserver : TSLFakeObject {
@public
    pid_t pid;
    AXObserverCallback callback;
    TSLFakeSource* source;
    TSLFakeElement* element; // the observed element; nil: no notification is registered
    std::string notification;
    void* context;
}
@end

@interface TSLFakeArray : NSArray {
@public
    std::vector<id> entries;
}
@end

@interface TSLFakeString : NSString {
@public
    std::string text; // ASCII only
}
@end

// Accessors of a property whose instance variable has the name of the getter. Unlike synthesized accessors,
// they check the thread. Each macro is for one kind of property.
#define TSL_ASSIGNED(type, getter, setter)                                                                   \
    -(type)getter {                                                                                          \
        tessarel::fakemac::checkThread();                                                                    \
        return getter;                                                                                       \
    }                                                                                                        \
    -(void)setter : (type)value {                                                                            \
        tessarel::fakemac::checkThread();                                                                    \
        getter = value;                                                                                      \
    }
#define TSL_OWNED(type, getter, setter, own)                                                                 \
    -(type)getter {                                                                                          \
        tessarel::fakemac::checkThread();                                                                    \
        return [[getter retain] autorelease];                                                                \
    }                                                                                                        \
    -(void)setter : (type)value {                                                                            \
        tessarel::fakemac::checkThread();                                                                    \
        type const before = getter;                                                                          \
        getter = [value own];                                                                                \
        [before release];                                                                                    \
    }
#define TSL_RETAINED(type, getter, setter) TSL_OWNED(type, getter, setter, retain)
#define TSL_COPIED(type, getter, setter) TSL_OWNED(type, getter, setter, copy)

namespace tessarel::fakemac {

/// Creates an element; the caller owns the reference.
[[nodiscard]] TSLFakeElement* newElement(FakeElementKind kind, pid_t pid, WindowNumber window);
/// Creates a string; the caller owns the reference.
[[nodiscard]] TSLFakeString* newString(const std::string& text);
/// Creates an array that takes over the references to the entries; the caller owns the reference to the
/// array.
[[nodiscard]] TSLFakeArray* newArray(std::vector<id> entries);

[[nodiscard]] NSString* autoreleased(const std::string& text);

/// Calls the observers of this notification of the element whose run loop source is served in the current
/// mode.
void notify(TSLFakeElement* element, const std::string& notification);
/// Returns whether the run loop serves the source in its current mode.
[[nodiscard]] bool isServed(TSLFakeSource* source);
/// Posts the workspace's notification `name` about the application.
void postApplicationNotification(NSString* name, pid_t pid);
/// Makes the application frontmost, then posts the workspace's notification.
void bringToFront(pid_t pid);
/// Puts this program's windows behind those of the application that comes to the front.
void sendOwnWindowsBack();
/// Aborts the process when called off the main thread: every framework function calls it, and every fake
/// before it calls back.
void checkThread();
[[nodiscard]] NSNotificationCenter* newCenter();
/// Records a misuse of the system that it would not report itself. `heldObjects` lists it.
void noteFault(const std::string& fault);
/// Keeps the menu's window on the screen until the next iteration of the run loop.
void letMenuFade();
/// Notes a fault when called while a menu is tracked or has not faded out. `what` completes "the program".
void checkMenusAreGone(const char* what);
/// Erases the application, then posts the workspace's notification.
void postTermination(pid_t pid, bool isNumbered);

/// Dispatches a press to the programs that have registered the hot key. Returns false when none has.
bool pressHotKey(std::uint32_t keyCode, std::uint32_t mods);

// Parts of `heldObjects` and `reset`, each in the source file that has the state.
void describeObjects(std::vector<std::string>& lines);
void describeHotKeys(std::vector<std::string>& lines);
void describeMonitors(std::vector<std::string>& lines);
void describeStatusItems(std::vector<std::string>& lines);
void describeReopening(std::vector<std::string>& lines);
void describeAccessibility(std::vector<std::string>& lines);
void describeLoop(std::vector<std::string>& lines);
void resetHotKeys();
void resetInput();
void resetReopening();
void resetLoop();
void resetAccessibility();

} // namespace tessarel::fakemac
