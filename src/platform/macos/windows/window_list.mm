// SPDX-License-Identifier: MIT

#include "platform/macos/windows/window_list.h"

#include "platform/macos/objects/conversions.h"

#include <CoreGraphics/CoreGraphics.h>
#import <Foundation/Foundation.h>
#include <optional>

namespace tessarel::macos {

namespace {

/// Returns a value of any class, or nil; its class has to be checked before use.
id valueOf(NSDictionary* window, CFStringRef key) {
    return [window objectForKey:(__bridge NSString*)key];
}

std::optional<std::int64_t> integerOf(NSDictionary* window, CFStringRef key) {
    NSNumber* const number = as<NSNumber>(valueOf(window, key));
    return number ? std::optional<std::int64_t>([number longLongValue]) : std::nullopt;
}

std::optional<double> realOf(NSDictionary* window, CFStringRef key) {
    NSNumber* const number = as<NSNumber>(valueOf(window, key));
    return number ? std::optional([number doubleValue]) : std::nullopt;
}

/// Returns the bounds in accessibility coordinates, which the window server uses as well.
std::optional<Rect> boundsOf(NSDictionary* window) {
    NSDictionary* const bounds = as<NSDictionary>(valueOf(window, kCGWindowBounds));
    CGRect rect{};
    if (!bounds || !CGRectMakeWithDictionaryRepresentation((__bridge CFDictionaryRef)bounds, &rect))
        return {};
    return rectFrom(rect);
}

/// Accepts nil, which has no properties.
ListedWindow listedFrom(NSDictionary* window) {
    return {integerOf(window, kCGWindowLayer), integerOf(window, kCGWindowOwnerPID), boundsOf(window),
            realOf(window, kCGWindowAlpha)};
}

} // namespace

std::vector<ListedWindow> MacWindowList::onScreenWindows() {
    @autoreleasepool {
        const auto list = CfRef<CFArrayRef>::adopt(CGWindowListCopyWindowInfo(
            kCGWindowListOptionOnScreenOnly | kCGWindowListExcludeDesktopElements, kCGNullWindowID));
        std::vector<ListedWindow> windows;
        for (id entry in (__bridge NSArray*)list.get())
            windows.push_back(listedFrom(as<NSDictionary>(entry)));
        return windows;
    }
}

} // namespace tessarel::macos
