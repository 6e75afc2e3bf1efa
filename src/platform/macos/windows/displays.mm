// SPDX-License-Identifier: MIT

#include "platform/macos/windows/displays.h"

#include "platform/macos/objects/conversions.h"

#import <AppKit/AppKit.h>

namespace tessarel::macos {

namespace {

/// Returns an empty optional when the display of `screen` has been disconnected: its frame is empty then.
std::optional<Screen> screenFrom(NSScreen* screen) {
    // AppKit replaces the NSScreen objects whenever the displays change. Only the screen number identifies a
    // display for as long as it is connected.
    NSNumber* const number = as<NSNumber>([[screen deviceDescription] objectForKey:@"NSScreenNumber"]);
    const Rect frame = rectFrom([screen frame]);
    if (frame.absWidth() == 0)
        return {};
    return Screen{[number unsignedLongLongValue], frame, rectFrom([screen visibleFrame])};
}

} // namespace

std::vector<Screen> MacDisplays::screens() {
    @autoreleasepool {
        std::vector<Screen> all;
        for (NSScreen* screen in [NSScreen screens]) {
            if (const auto connected = screenFrom(screen))
                all.push_back(*connected);
        }
        return all;
    }
}

std::optional<Screen> MacDisplays::mainScreen() {
    @autoreleasepool {
        NSScreen* const screen = [NSScreen mainScreen];
        return screen ? screenFrom(screen) : std::nullopt;
    }
}

} // namespace tessarel::macos
