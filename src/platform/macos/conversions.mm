#include "platform/macos/conversions.h"

namespace tessarel::macos {

ObjcRef<NSString*> nsString(std::string_view text) {
    return ObjcRef<NSString*>::adopt([[NSString alloc] initWithBytes:text.data()
                                                              length:text.size()
                                                            encoding:NSUTF8StringEncoding]);
}

std::string stringFrom(NSString* text) {
    const char* const bytes = [text UTF8String];
    return bytes ? bytes : "";
}

std::optional<std::string> optionalStringFrom(NSString* text) {
    return text ? std::optional(stringFrom(text)) : std::nullopt;
}

} // namespace tessarel::macos
