// SPDX-License-Identifier: MIT

#pragma once

#include "platform/macos/objects/refs.h"
#include "ports/desktop/rect.h"

#include <optional>
#include <string>
#include <string_view>

// Conversions between the system's types and ours. For Objective-C++ sources only.

namespace tessarel::macos {

/// Returns `rect` as our type, in the coordinate system that `rect` has.
[[nodiscard]] inline Rect rectFrom(const CGRect& rect) {
    return {rect.origin.x, rect.origin.y, rect.size.width, rect.size.height};
}

/// Returns `text` as a new string; null when `text` is not valid UTF-8.
[[nodiscard]] ObjcRef<NSString*> nsString(std::string_view text);

/// Returns `text` for display, never null. Text that is not valid UTF-8 is decoded as Latin-1, and control
/// characters become spaces.
[[nodiscard]] ObjcRef<NSString*> shownText(std::string_view text);

/// Returns `text` as UTF-8; empty for nil and for a string that UTF-8 cannot represent (an unpaired
/// surrogate).
[[nodiscard]] std::string stringFrom(NSString* text);

/// Returns `std::nullopt` for nil, otherwise the same as `stringFrom`.
[[nodiscard]] std::optional<std::string> optionalStringFrom(NSString* text);

/// Returns the string as its Core Foundation type. The result is not retained: it is valid as long as `text`.
[[nodiscard]] inline CFStringRef cfString(const ObjcRef<NSString*>& text) {
    return (__bridge CFStringRef)text.get();
}

/// Returns `object` if it is of class `Class`, otherwise nil. Use it on values from other processes, which
/// may be of any class.
template <class Class>
[[nodiscard]] Class* as(id object) {
    return [object isKindOfClass:[Class class]] ? static_cast<Class*>(object) : nil;
}

} // namespace tessarel::macos
