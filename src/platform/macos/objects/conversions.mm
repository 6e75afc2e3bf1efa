// SPDX-License-Identifier: MIT

#include "platform/macos/objects/conversions.h"

#include <algorithm>

namespace tessarel::macos {

namespace {

/// Returns null when the bytes are not valid in `encoding`.
ObjcRef<NSString*> decoded(std::string_view text, NSStringEncoding encoding) {
    return ObjcRef<NSString*>::adopt([[NSString alloc] initWithBytes:text.data()
                                                              length:text.size()
                                                            encoding:encoding]);
}

/// Returns true for the ASCII control characters. These bytes never occur within a multi-byte sequence of
/// UTF-8, so single bytes can be replaced.
bool isControl(char character) {
    constexpr char kDelete = 0x7f;
    return (character >= 0 && character < ' ') || character == kDelete;
}

} // namespace

ObjcRef<NSString*> nsString(std::string_view text) {
    return decoded(text, NSUTF8StringEncoding);
}

ObjcRef<NSString*> shownText(std::string_view text) {
    std::string line(text);
    std::replace_if(line.begin(), line.end(), isControl, ' ');
    // Every sequence of bytes is valid Latin-1.
    auto shown = decoded(line, NSUTF8StringEncoding);
    return shown ? std::move(shown) : decoded(line, NSISOLatin1StringEncoding);
}

std::string stringFrom(NSString* text) {
    const char* const bytes = [text UTF8String];
    return bytes ? bytes : "";
}

std::optional<std::string> optionalStringFrom(NSString* text) {
    return text ? std::optional(stringFrom(text)) : std::nullopt;
}

} // namespace tessarel::macos
