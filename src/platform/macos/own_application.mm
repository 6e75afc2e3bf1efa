#include "platform/macos/own_application.h"

#import <AppKit/AppKit.h>

namespace tessarel::macos {

void MacOwnApplication::becomeAccessory() {
    @autoreleasepool {
        [[NSApplication sharedApplication] setActivationPolicy:NSApplicationActivationPolicyAccessory];
    }
}

void MacOwnApplication::activate() {
    @autoreleasepool {
        [[NSApplication sharedApplication] activateIgnoringOtherApps:YES];
    }
    m_toolkit.activate();
}

void MacOwnApplication::terminate() {
    m_toolkit.terminate();
}

} // namespace tessarel::macos
