// SPDX-License-Identifier: MIT

#include "macos/fake/fake_objects.h"

#include <algorithm>
#include <sstream>
#include <utility>

// The accessibility API as documented: each call returns a new object, so equal elements are different
// objects. The caller owns the results of Copy functions, but not the arguments of callbacks.

using namespace tessarel;
using namespace tessarel::fakemac;

namespace {

enum : CFTypeID { kElementType = 257, kValueType = 258 };

constexpr double kUsualTimeLimit = 6; // the system's default messaging timeout in seconds

std::vector<TSLFakeObserver*> observers; // all existing observers, owned by their creators
float systemTimeLimit = 0;               // in seconds; 0: the default
int registrationsLeft = 0;               // notifications that freed observers had not removed
int sourcesLeft = 0;                     // run loop sources that freed observers had not removed

TSLFakeElement* fake(AXUIElementRef element) {
    return (TSLFakeElement*)element;
}

Window* windowOf(const TSLFakeElement* element) {
    const auto found = mac().windows.find(element->window);
    return found == mac().windows.end() ? nullptr : &found->second;
}

/// Returns the error of a message to the element's application; success when the application replies. Records
/// the wait when the message times out.
AXError ask(const TSLFakeElement* element) {
    if (!mac().trusted)
        return kAXErrorAPIDisabled;
    const auto found = mac().applications.find(element->pid);
    if (found == mac().applications.end())
        return element->kind == FakeElementKind::Desktop ? kAXErrorAttributeUnsupported
                                                         : kAXErrorInvalidUIElement;
    if (found->second.answers)
        return kAXErrorSuccess;
    const double limit = element->timeLimit > 0 ? element->timeLimit : systemTimeLimit;
    mac().waits.push_back(limit > 0 ? limit : kUsualTimeLimit);
    if (mac().waited)
        mac().waited(mac().waits.back());
    return kAXErrorCannotComplete;
}

/// Returns an object that the receiver does not own, so releasing it is a fault.
CFTypeRef nobodysObject() {
    static NSObject* const object = [[NSObject alloc] init];
    return (CFTypeRef)object;
}

/// Hands over the reference; null means that the attribute is not supported.
AXError give(CFTypeRef* result, CFTypeRef value) {
    *result = value;
    return value ? kAXErrorSuccess : kAXErrorAttributeUnsupported;
}

CFTypeRef newBoolean(bool value) {
    return CFRetain(value ? kCFBooleanTrue : kCFBooleanFalse);
}

CFTypeRef newText(const std::optional<std::string>& text) {
    return text ? (CFTypeRef)newString(*text) : nullptr;
}

CFTypeRef newPair(AXValueType type, CGFloat first, CGFloat second) {
    TSLFakeValue* const pair = [[TSLFakeValue alloc] init];
    pair->type = type;
    pair->first = first;
    pair->second = second;
    return (CFTypeRef)pair;
}

CFTypeRef newWindows(pid_t pid) {
    std::vector<id> windows;
    for (const WindowNumber number : mac().stacking) {
        if (mac().windows.at(number).pid == pid)
            windows.push_back(newElement(FakeElementKind::Window, pid, number));
    }
    return (CFTypeRef)newArray(std::move(windows));
}

CFTypeRef newApplicationAttribute(pid_t pid, const std::string& attribute) {
    const Application& application = mac().applications.at(pid);
    if (attribute == "AXWindows")
        return newWindows(pid);
    if (attribute == "AXRole")
        return (CFTypeRef)newString("AXApplication");
    if (attribute == "AXFocusedWindow" && application.focusedWindow != 0)
        return (CFTypeRef)newElement(FakeElementKind::Window, pid, application.focusedWindow);
    if (attribute == "AXEnhancedUserInterface" && application.enhancedInterface)
        return newBoolean(*application.enhancedInterface);
    const auto number = application.numbers.find(attribute);
    return number == application.numbers.end() ? nullptr
                                               : (CFTypeRef)[[NSNumber alloc] initWithDouble:number->second];
}

CFTypeRef newWindowAttribute(const Window& window, const std::string& attribute) {
    if (attribute == "AXPosition")
        return newPair(kAXValueTypeCGPoint, window.axFrame.x, window.axFrame.y);
    if (attribute == "AXSize")
        return newPair(kAXValueTypeCGSize, window.axFrame.width, window.axFrame.height);
    if (attribute == "AXRole")
        return newText(window.role);
    if (attribute == "AXSubrole")
        return newText(window.subrole);
    if (attribute == "AXMinimized")
        return newBoolean(window.minimized);
    if (attribute == "AXFullScreen")
        return newBoolean(window.fullScreen);
    return nullptr;
}

CFTypeRef newPartAttribute(const TSLFakeElement* part, const Window& window, const std::string& attribute) {
    if (attribute == "AXRole")
        return newText(window.partRole);
    if (attribute == "AXWindow")
        return (CFTypeRef)newElement(FakeElementKind::Window, part->pid, part->window);
    return nullptr;
}

CFTypeRef newOdd(const TSLFakeElement* element, Odd kind) {
    switch (kind) {
    case Odd::Text:
        return (CFTypeRef)newString("AXWindow");
    case Odd::Rectangle:
        return newPair(kAXValueTypeCGRect, 1, 2);
    case Odd::MixedList:
        return (CFTypeRef)newArray({newString("AXWindow"), [[TSLFakeObject alloc] init],
                                    newElement(FakeElementKind::Window, element->pid, element->window)});
    case Odd::Unknown:
        break;
    }
    return (CFTypeRef)[[TSLFakeObject alloc] init];
}

void resize(Window& window, double width, double height) {
    Rect& axFrame = window.axFrame;
    axFrame.width = std::max(width, window.minimum.width);
    axFrame.height = std::max(height, window.minimum.height);
    if (window.maximum) {
        axFrame.width = std::min(axFrame.width, window.maximum->width);
        axFrame.height = std::min(axFrame.height, window.maximum->height);
    }
}

/// A write that the application has confirmed and not yet applied.
struct LateWrite {
    WindowNumber window;
    bool isSize;
    double first;
    double second;
    double left; ///< seconds until it is applied
};
std::vector<LateWrite> lateWrites;

/// Applies the write, unless the window has closed.
void follow(const LateWrite& write) {
    const auto found = mac().windows.find(write.window);
    if (found == mac().windows.end())
        return;
    Window& window = found->second;
    if (write.isSize) {
        resize(window, write.first, write.second);
    } else {
        window.axFrame.x = write.first;
        window.axFrame.y = write.second;
    }
}

AXError writeWindow(TSLFakeElement* element, const std::string& attribute, CFTypeRef value) {
    Window* const window = windowOf(element);
    if (!window)
        return kAXErrorInvalidUIElement;
    if (CFGetTypeID(value) != AXValueGetTypeID())
        return kAXErrorIllegalArgument;
    TSLFakeValue* const pair = (TSLFakeValue*)value;
    const bool isPosition = attribute == "AXPosition" && pair->type == kAXValueTypeCGPoint;
    const bool isSize = attribute == "AXSize" && pair->type == kAXValueTypeCGSize;
    if (!isPosition && !isSize)
        return kAXErrorIllegalArgument;
    std::ostringstream line;
    line << "window " << element->window << ' ' << attribute << ' ' << pair->first << ' ' << pair->second;
    mac().writes.push_back(line.str());
    if (!window->hasAttributes)
        return kAXErrorAttributeUnsupported;
    if (window->fullScreen)
        return kAXErrorFailure;
    const LateWrite write{element->window, isSize, pair->first, pair->second, window->lateness};
    if (window->lateness > 0)
        lateWrites.push_back(write);
    else
        follow(write);
    return kAXErrorSuccess;
}

AXError writeApplication(TSLFakeElement* element, const std::string& attribute, CFTypeRef value) {
    Application& application = mac().applications.at(element->pid);
    if (attribute != "AXEnhancedUserInterface" || !application.enhancedInterface)
        return kAXErrorAttributeUnsupported;
    if (CFGetTypeID(value) != CFBooleanGetTypeID())
        return kAXErrorIllegalArgument;
    application.enhancedInterface = CFEqual(value, kCFBooleanTrue) != 0;
    return kAXErrorSuccess;
}

} // namespace

@implementation TSLFakeObserver
- (instancetype)init {
    if ((self = [super init])) {
        source = [[TSLFakeSource alloc] init];
        observers.push_back(self);
    }
    return self;
}
- (void)dealloc {
    std::erase(observers, self);
    if (element)
        ++registrationsLeft;
    if (!source->modes.empty())
        ++sourcesLeft;
    [element release];
    [source release];
    [super dealloc];
}
@end

namespace tessarel::fakemac {

void notify(TSLFakeElement* element, const std::string& notification) {
    checkThread();
    const auto present = observers;
    for (TSLFakeObserver* observer : present) {
        const bool isThere = std::ranges::find(observers, observer) != observers.end();
        if (!isThere || !isServed(observer->source) || observer->notification != notification)
            continue;
        TSLFakeElement* const observed = observer->element;
        if (!observed || observed->pid != element->pid ||
            (observed->kind == FakeElementKind::Window && observed->window != element->window))
            continue;
        [observer retain];
        for (int i = 0; i < (mac().notificationsComeTwice ? 2 : 1); ++i)
            observer->callback((AXObserverRef)observer, (AXUIElementRef)element,
                               (__bridge CFStringRef)autoreleased(notification), observer->context);
        [observer release];
    }
}

void describeAccessibility(std::vector<std::string>& lines) {
    for (const TSLFakeObserver* observer : observers) {
        registrationsLeft += observer->element ? 1 : 0;
        sourcesLeft += observer->source->modes.empty() ? 0 : 1;
    }
    if (const int left = std::exchange(registrationsLeft, 0); left != 0)
        lines.push_back(std::to_string(left) + " notifications that nobody has removed");
    if (const int left = std::exchange(sourcesLeft, 0); left != 0)
        lines.push_back(std::to_string(left) + " sources that nobody has removed");
}

void passTime(double seconds) {
    for (LateWrite& write : lateWrites)
        write.left -= seconds;
    const auto isDue = [](const LateWrite& write) { return write.left <= 1e-9; };
    for (const LateWrite& write : lateWrites) {
        if (isDue(write))
            follow(write);
    }
    std::erase_if(lateWrites, isDue);
}

void resetAccessibility() {
    lateWrites.clear();
    registrationsLeft = sourcesLeft = 0;
    systemTimeLimit = 0;
}

} // namespace tessarel::fakemac

const CFStringRef kAXTrustedCheckOptionPrompt = CFSTR("AXTrustedCheckOptionPrompt");

Boolean AXIsProcessTrusted() {
    checkThread();
    return mac().trusted ? 1 : 0;
}

Boolean AXIsProcessTrustedWithOptions(CFDictionaryRef options) {
    checkThread();
    for (NSString* key in (NSDictionary*)options) {
        const bool on = [[(NSDictionary*)options objectForKey:key] boolValue];
        mac().prompted.push_back(std::string([key UTF8String]) + (on ? " on" : " off"));
    }
    return AXIsProcessTrusted();
}

CFTypeID AXUIElementGetTypeID() {
    checkThread();
    return kElementType;
}

CFTypeID AXValueGetTypeID() {
    checkThread();
    return kValueType;
}

AXUIElementRef AXUIElementCreateApplication(pid_t pid) {
    checkThread();
    return (AXUIElementRef)newElement(FakeElementKind::Application, pid, 0);
}

AXUIElementRef AXUIElementCreateSystemWide() {
    checkThread();
    return (AXUIElementRef)newElement(FakeElementKind::Desktop, 0, 0);
}

AXError AXUIElementCopyAttributeValue(AXUIElementRef reference, CFStringRef name, CFTypeRef* result) {
    checkThread();
    TSLFakeElement* const element = fake(reference);
    if (const AXError error = ask(element)) {
        *result = nobodysObject(); // after an error the result is undefined
        return error;
    }
    if (mac().givesNothing)
        return kAXErrorSuccess;
    const std::string attribute = [(NSString*)name UTF8String];
    if (element->kind == FakeElementKind::Application)
        return give(result, newApplicationAttribute(element->pid, attribute));
    const Window* const window = windowOf(element);
    if (!window)
        return kAXErrorInvalidUIElement;
    if (!window->hasAttributes)
        return kAXErrorAttributeUnsupported;
    if (const auto odd = window->odd.find(attribute); odd != window->odd.end())
        return give(result, newOdd(element, odd->second));
    return give(result, element->kind == FakeElementKind::Part ? newPartAttribute(element, *window, attribute)
                                                               : newWindowAttribute(*window, attribute));
}

AXError AXUIElementSetAttributeValue(AXUIElementRef reference, CFStringRef name, CFTypeRef value) {
    checkThread();
    TSLFakeElement* const element = fake(reference);
    if (const AXError error = ask(element))
        return error;
    if (value == nullptr)
        abort();
    ++mac().valuesGiven;
    const std::string attribute = [(NSString*)name UTF8String];
    return element->kind == FakeElementKind::Application ? writeApplication(element, attribute, value)
                                                         : writeWindow(element, attribute, value);
}

AXError AXUIElementCopyElementAtPosition(AXUIElementRef reference, float x, float y, AXUIElementRef* result) {
    checkThread();
    const TSLFakeElement* const within = fake(reference);
    if (!mac().trusted)
        return kAXErrorAPIDisabled;
    if (within->kind != FakeElementKind::Desktop && within->kind != FakeElementKind::Application)
        return kAXErrorIllegalArgument;
    if (mac().givesNothing)
        return kAXErrorSuccess;
    const WindowNumber number = windowAt({x, y});
    if (number == 0)
        return kAXErrorNoValue;
    const Window& window = mac().windows.at(number);
    if (within->kind == FakeElementKind::Application && within->pid != window.pid)
        return kAXErrorNoValue;
    const auto kind = window.partRole ? FakeElementKind::Part : FakeElementKind::Window;
    TSLFakeElement* const found = newElement(kind, window.pid, number);
    const AXError error = ask(within->kind == FakeElementKind::Desktop ? found : within);
    if (error)
        [found release];
    else
        *result = (AXUIElementRef)found;
    return error;
}

AXError AXUIElementGetPid(AXUIElementRef element, pid_t* result) {
    checkThread();
    if (fake(element)->kind != FakeElementKind::Desktop) // its process id is undocumented
        *result = fake(element)->pid;
    return kAXErrorSuccess;
}

AXError AXUIElementSetMessagingTimeout(AXUIElementRef element, float seconds) {
    checkThread();
    if (seconds < 0)
        return kAXErrorIllegalArgument;
    if (fake(element)->kind == FakeElementKind::Desktop)
        systemTimeLimit = seconds;
    else
        fake(element)->timeLimit = seconds;
    return kAXErrorSuccess;
}

AXValueRef AXValueCreate(AXValueType type, const void* value) {
    checkThread();
    const auto* const numbers = static_cast<const CGFloat*>(value); // points and sizes are two CGFloats
    return (AXValueRef)newPair(type, numbers[0], numbers[1]);
}

AXValueType AXValueGetType(AXValueRef value) {
    checkThread();
    return ((TSLFakeValue*)value)->type;
}

Boolean AXValueGetValue(AXValueRef value, AXValueType type, void* result) {
    checkThread();
    const TSLFakeValue* const pair = (TSLFakeValue*)value;
    if (pair->type != type)
        return 0;
    static_cast<CGFloat*>(result)[0] = pair->first;
    static_cast<CGFloat*>(result)[1] = pair->second;
    return 1;
}

AXError AXObserverCreate(pid_t pid, AXObserverCallback callback, AXObserverRef* result) {
    checkThread();
    if (mac().givesNothing)
        return kAXErrorSuccess;
    TSLFakeObserver* const observer = [[TSLFakeObserver alloc] init];
    observer->pid = pid;
    observer->callback = callback;
    *result = (AXObserverRef)observer;
    return kAXErrorSuccess;
}

AXError AXObserverAddNotification(AXObserverRef reference, AXUIElementRef element, CFStringRef notification,
                                  void* context) {
    checkThread();
    TSLFakeObserver* const observer = (TSLFakeObserver*)reference;
    TSLFakeElement* const observed = fake(element);
    if (observed->pid != observer->pid)
        return kAXErrorIllegalArgument;
    ++mac().observationRequests;
    if (observed->pid == mac().ownPid)
        noteFault("the program observes itself");
    if (const AXError error = ask(observed))
        return error;
    if (int& failures = mac().applications.at(observed->pid).failures; failures > 0) {
        --failures;
        return kAXErrorCannotComplete;
    }
    if (!mac().applications.at(observed->pid).allowsObservers)
        return kAXErrorNotificationUnsupported;
    if (observed->kind == FakeElementKind::Window && !windowOf(observed))
        return kAXErrorInvalidUIElement;
    if (observer->element)
        return kAXErrorNotificationAlreadyRegistered;
    observer->element = [observed retain];
    observer->notification = [(NSString*)notification UTF8String];
    observer->context = context;
    return kAXErrorSuccess;
}

AXError AXObserverRemoveNotification(AXObserverRef reference, AXUIElementRef element,
                                     CFStringRef notification) {
    checkThread();
    TSLFakeObserver* const observer = (TSLFakeObserver*)reference;
    (void)ask(fake(element)); // removed in any case, but not before a hanging application has timed out
    if (!observer->element || observer->notification != [(NSString*)notification UTF8String])
        return kAXErrorNotificationNotRegistered;
    [observer->element release];
    observer->element = nil;
    return kAXErrorSuccess;
}

CFRunLoopSourceRef AXObserverGetRunLoopSource(AXObserverRef observer) {
    checkThread();
    return (CFRunLoopSourceRef)((TSLFakeObserver*)observer)->source;
}
