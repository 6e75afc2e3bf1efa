#include "platform/macos/accent_color.h"

#import <AppKit/AppKit.h>

namespace tessarel::macos {

std::optional<Color> accentColor() {
    @autoreleasepool {
        // A colour of the system's has no parts before it is converted; asked for them it raises an
        // exception.
        NSColor* const color =
            [[NSColor controlAccentColor] colorUsingColorSpace:[NSColorSpace sRGBColorSpace]];
        if (!color)
            return {};
        return Color{[color redComponent], [color greenComponent], [color blueComponent]};
    }
}

} // namespace tessarel::macos
