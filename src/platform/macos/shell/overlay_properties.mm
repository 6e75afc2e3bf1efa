// SPDX-License-Identifier: MIT

#include "platform/macos/shell/overlay_properties.h"

#import <AppKit/AppKit.h>

namespace tessarel::macos {

void becomeOverlay(void* nativeView) {
    @autoreleasepool {
        NSWindow* const window = [(__bridge NSView*)nativeView window];
        [window setLevel:NSStatusWindowLevel];
        [window setCollectionBehavior:NSWindowCollectionBehaviorCanJoinAllSpaces |
                                      NSWindowCollectionBehaviorStationary |
                                      NSWindowCollectionBehaviorIgnoresCycle |
                                      NSWindowCollectionBehaviorFullScreenAuxiliary];
        [window setIgnoresMouseEvents:YES];
        [window setHasShadow:NO];
    }
}

void orderOverlayFront(void* nativeView) {
    @autoreleasepool {
        becomeOverlay(nativeView);
        [[(__bridge NSView*)nativeView window] orderFrontRegardless];
    }
}

} // namespace tessarel::macos
