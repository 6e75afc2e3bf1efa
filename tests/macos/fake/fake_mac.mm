// SPDX-License-Identifier: MIT

#include "macos/fake/fake_objects.h"

#import <AppKit/AppKit.h>
#include <algorithm>
#include <utility>

// Defined only in builds with the leak sanitizer.
extern "C" {
__attribute__((weak)) void __lsan_disable(void);
__attribute__((weak)) void __lsan_enable(void);
}

namespace tessarel::fakemac {

namespace {

WindowNumber lastWindow = 0;

TSLFakeElement* windowElement(WindowNumber number) {
    return [newElement(FakeElementKind::Window, mac().windows.at(number).pid, number) autorelease];
}

/// Makes GNUstep's classes allocate what they keep until the process exits, which is not reported as a leak.
bool initializeClasses() {
    const bool hasLeakCheck = __lsan_disable != nullptr && __lsan_enable != nullptr;
    if (hasLeakCheck)
        __lsan_disable();
    bool isRight = false;
    @autoreleasepool {
        isRight = [@{@"key" : @"value"} count] == 1;
    }
    if (hasLeakCheck)
        __lsan_enable();
    return isRight;
}

} // namespace

Mac& mac() {
    static Mac theOnlyOne;
    return theOnlyOne;
}

void reset() {
    [[maybe_unused]] static const bool once = initializeClasses();
    mac() = {};
    resetHotKeys();
    resetInput();
    resetReopening();
    resetLoop();
    resetAccessibility();
}

std::vector<std::string> heldObjects() {
    std::vector<std::string> lines;
    describeObjects(lines);
    describeHotKeys(lines);
    describeMonitors(lines);
    describeStatusItems(lines);
    describeReopening(lines);
    describeAccessibility(lines);
    describeLoop(lines);
    return lines;
}

void launch(ProcessId pid, const Application& application) {
    static std::uint64_t now = 1'700'000'000'000'000;
    Application& launched = mac().applications[pid] = application;
    if (launched.startedAt == 0)
        launched.startedAt = ++now;
    postApplicationNotification(NSWorkspaceDidLaunchApplicationNotification, pid);
}

void terminate(ProcessId pid, bool isNumbered) {
    const auto isIts = [&](WindowNumber number) { return mac().windows.at(number).pid == pid; };
    std::erase_if(mac().stacking, isIts);
    std::erase_if(mac().windows, [&](const auto& entry) { return entry.second.pid == pid; });
    if (mac().frontmost == pid)
        mac().frontmost = 0;
    postTermination(pid, isNumbered);
}

WindowNumber openWindow(const Window& window) {
    @autoreleasepool {
        const WindowNumber number = ++lastWindow;
        mac().windows[number] = window;
        mac().stacking.insert(mac().stacking.begin(), number);
        notify(windowElement(number), "AXWindowCreated");
        return number;
    }
}

void closeWindow(WindowNumber number) {
    @autoreleasepool {
        TSLFakeElement* const element = windowElement(number);
        const bool tellsItsEnd = mac().windows.at(number).tellsItsEnd;
        std::erase(mac().stacking, number);
        mac().windows.erase(number);
        for (auto& [pid, application] : mac().applications) {
            if (application.focusedWindow == number)
                application.focusedWindow = 0;
        }
        if (tellsItsEnd)
            notify(element, "AXUIElementDestroyed");
    }
}

void focus(WindowNumber number) {
    const ProcessId pid = mac().windows.at(number).pid;
    std::erase(mac().stacking, number);
    mac().stacking.insert(mac().stacking.begin(), number);
    mac().applications.at(pid).focusedWindow = number;
    bringToFront(pid);
}

void bringToFront(pid_t pid) {
    if (std::exchange(mac().frontmost, pid) == pid)
        return;
    if (pid != mac().ownPid)
        sendOwnWindowsBack();
    if (mac().applications.contains(pid))
        postApplicationNotification(NSWorkspaceDidActivateApplicationNotification, pid);
}

WindowNumber windowAt(const Point& axPoint) {
    for (const WindowNumber number : mac().stacking) {
        const Window& window = mac().windows.at(number);
        if (!window.minimized && window.axFrame.contains(axPoint))
            return number;
    }
    return 0;
}

} // namespace tessarel::fakemac
