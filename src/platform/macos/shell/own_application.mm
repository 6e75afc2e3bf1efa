// SPDX-License-Identifier: MIT

#include "platform/macos/shell/own_application.h"

#import <AppKit/AppKit.h>

namespace tessarel::macos {

void MacOwnApplication::becomeAccessory() {
    @autoreleasepool {
        [[NSApplication sharedApplication] setActivationPolicy:NSApplicationActivationPolicyAccessory];
    }
}

void MacOwnApplication::bringToFront(void* nativeView) {
    @autoreleasepool {
        NSWindow* const window = [(__bridge NSView*)nativeView window];
        [window orderFrontRegardless];
        [window makeKeyWindow];
    }
}

void MacOwnApplication::activate() {
    @autoreleasepool {
        [[NSApplication sharedApplication] activateIgnoringOtherApps:YES];
    }
    m_toolkit.activate();
    for (void* const view : m_windows())
        bringToFront(view);
}

void MacOwnApplication::terminate() {
    m_toolkit.terminate();
}

} // namespace tessarel::macos
