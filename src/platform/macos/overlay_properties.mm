#include "platform/macos/overlay_properties.h"

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

} // namespace tessarel::macos
