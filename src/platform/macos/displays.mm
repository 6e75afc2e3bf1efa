#include "platform/macos/displays.h"

#include "platform/macos/conversions.h"

#import <AppKit/AppKit.h>

namespace tessarel::macos {

namespace {

Screen screenFrom(NSScreen* screen) {
    // The objects are made anew whenever displays change; only the number stays with the display.
    NSNumber* const number = as<NSNumber>([[screen deviceDescription] objectForKey:@"NSScreenNumber"]);
    return {[number unsignedLongLongValue], rectFrom([screen frame]), rectFrom([screen visibleFrame])};
}

} // namespace

std::vector<Screen> MacDisplays::screens() {
    @autoreleasepool {
        std::vector<Screen> all;
        for (NSScreen* screen in [NSScreen screens])
            all.push_back(screenFrom(screen));
        return all;
    }
}

std::optional<Screen> MacDisplays::mainScreen() {
    @autoreleasepool {
        NSScreen* const screen = [NSScreen mainScreen];
        return screen ? std::optional(screenFrom(screen)) : std::nullopt;
    }
}

} // namespace tessarel::macos
