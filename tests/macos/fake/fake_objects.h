#pragma once

#include "macos/fake/fake_mac.h"

#import <ApplicationServices/ApplicationServices.h>
#import <Foundation/Foundation.h>
#include <set>
#include <string>
#include <vector>

// What stands behind the references that the fake frameworks give out. Every one of these objects is counted
// while it lives.

namespace tessarel::fakemac {

/// What makes the object that it is part of count.
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
    float timeLimit; // of this very object; 0: none of its own
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
    TSLFakeElement* element; // nil: nothing is observed
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
    std::string text; // ASCII
}
@end

namespace tessarel::fakemac {

/// The caller owns the answer.
[[nodiscard]] TSLFakeElement* newElement(FakeElementKind kind, pid_t pid, WindowNumber window);
[[nodiscard]] TSLFakeString* newString(const std::string& text);
/// Takes over the references to the entries.
[[nodiscard]] TSLFakeArray* newArray(std::vector<id> entries);

[[nodiscard]] NSString* autoreleased(const std::string& text);

/// Sends what observers of the element wait for, as far as the run loop lets it through now.
void notify(TSLFakeElement* element, const std::string& notification);
/// Whether the run loop looks at the source in the mode that it is in.
[[nodiscard]] bool isServed(TSLFakeSource* source);
/// Lets the applications' notifications about `pid` out.
void postApplicationNotification(NSString* name, pid_t pid);
/// Makes the program the one in front, then lets that out.
void bringToFront(pid_t pid);
/// Another program comes to the front, and its windows with it.
void sendOwnWindowsBack();
/// Ends the process off the main thread, where no framework that the back end uses may be called.
void checkThread();
[[nodiscard]] NSNotificationCenter* newCenter();
/// Something that the system would punish in its own way, to be told at the end of the test.
void noteFault(const std::string& fault);
/// A menu's window stays on the screen until the next turn.
void letMenuFade();
/// Fails the test that does `what` while a menu is tracked or has not faded out.
void checkMenusAreGone(const char* what);
/// Ends the application, then tells of it.
void postTermination(pid_t pid, bool isNumbered);

/// Whether somebody has claimed the keys, who then is told.
bool pressHotKey(std::uint32_t keyCode, std::uint32_t mods);

// Parts of `heldObjects` and of `reset`.
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
