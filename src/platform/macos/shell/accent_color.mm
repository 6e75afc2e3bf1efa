// SPDX-License-Identifier: MIT

#include "platform/macos/shell/accent_color.h"

#import <AppKit/AppKit.h>

namespace tessarel::macos {

std::optional<Color> accentColor() {
    @autoreleasepool {
        // controlAccentColor is a catalog colour: reading its components before the conversion raises an
        // exception.
        NSColor* const color =
            [[NSColor controlAccentColor] colorUsingColorSpace:[NSColorSpace sRGBColorSpace]];
        if (!color)
            return {};
        return Color{[color redComponent], [color greenComponent], [color blueComponent]};
    }
}

} // namespace tessarel::macos
