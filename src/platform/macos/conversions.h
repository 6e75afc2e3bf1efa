#pragma once

#include "platform/macos/refs.h"
#include "ports/rect.h"

#include <optional>
#include <string>
#include <string_view>

// Between the system's values and ours. For Objective-C++ sources only.

namespace tessarel::macos {

[[nodiscard]] inline Rect rectFrom(const CGRect& rect) {
    return {rect.origin.x, rect.origin.y, rect.size.width, rect.size.height};
}

/// Holds nothing when `text` is not UTF-8.
[[nodiscard]] ObjcRef<NSString*> nsString(std::string_view text);

/// Always a text: what is not UTF-8 is read as Latin-1, and control characters are spaces.
[[nodiscard]] ObjcRef<NSString*> shownText(std::string_view text);

/// UTF-8; empty for nil.
[[nodiscard]] std::string stringFrom(NSString* text);

[[nodiscard]] std::optional<std::string> optionalStringFrom(NSString* text);

/// The same object under its other type: no reference changes hands.
[[nodiscard]] inline CFStringRef cfString(const ObjcRef<NSString*>& text) {
    return (__bridge CFStringRef)text.get();
}

/// `object` if it is of class `Class`, else nil: what other programs hand over may be anything.
template <class Class>
[[nodiscard]] Class* as(id object) {
    return [object isKindOfClass:[Class class]] ? static_cast<Class*>(object) : nil;
}

} // namespace tessarel::macos
