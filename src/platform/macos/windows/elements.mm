// SPDX-License-Identifier: MIT

#include "platform/macos/windows/elements.h"

#include "platform/macos/objects/conversions.h"

#include <cmath>
#include <utility>

namespace tessarel::macos {

namespace {

CfRef<CFTypeRef> axValue(AXValueType type, const void* value) {
    return CfRef<CFTypeRef>::adopt(AXValueCreate(type, value));
}

/// Returns an empty optional for rectangles and ranges. `AXValueGetValue` fails when the value has another
/// type than the one given.
std::optional<AttributeValue> geometryFrom(AXValueRef value) {
    CGPoint point{};
    if (AXValueGetValue(value, kAXValueTypeCGPoint, &point))
        return Point{point.x, point.y};
    CGSize size{};
    if (AXValueGetValue(value, kAXValueTypeCGSize, &size))
        return Size{size.width, size.height};
    return {};
}

/// Retains `element`, which belongs to its array or to the caller.
Element sharedElement(CFTypeRef element) {
    return elementFrom(CfRef<AXUIElementRef>::share(static_cast<AXUIElementRef>(element)));
}

std::vector<Element> elementsFrom(CFArrayRef list) {
    std::vector<Element> elements;
    const CFIndex count = CFArrayGetCount(list);
    for (CFIndex i = 0; i < count; ++i) {
        const CFTypeRef entry = CFArrayGetValueAtIndex(list, i);
        if (entry && CFGetTypeID(entry) == AXUIElementGetTypeID())
            elements.push_back(sharedElement(entry));
    }
    return elements;
}

/// Converts each alternative of `AttributeValue` to the object that the API expects.
struct Expression {
    CfRef<CFTypeRef> operator()(bool value) const {
        return CfRef<CFTypeRef>::share(value ? kCFBooleanTrue : kCFBooleanFalse);
    }
    CfRef<CFTypeRef> operator()(double value) const {
        if (!std::isfinite(value))
            return {};
        return CfRef<CFTypeRef>::share((__bridge CFTypeRef)[NSNumber numberWithDouble:value]);
    }
    CfRef<CFTypeRef> operator()(const Point& value) const {
        const CGPoint point{value.x, value.y};
        return value.isFinite() ? axValue(kAXValueTypeCGPoint, &point) : CfRef<CFTypeRef>();
    }
    CfRef<CFTypeRef> operator()(const Size& value) const {
        const CGSize size{value.width, value.height};
        return value.isFinite() ? axValue(kAXValueTypeCGSize, &size) : CfRef<CFTypeRef>();
    }
    CfRef<CFTypeRef> operator()(const std::string& value) const {
        return CfRef<CFTypeRef>::share((__bridge CFTypeRef)nsString(value).get());
    }
    // No attribute of these types is written.
    CfRef<CFTypeRef> operator()(const Element& /*value*/) const { return {}; }
    CfRef<CFTypeRef> operator()(const std::vector<Element>& /*value*/) const { return {}; }
};

} // namespace

Element elementFrom(CfRef<AXUIElementRef> element) {
    if (!element)
        return {};
    return {std::shared_ptr<const void>(element.release(), CFRelease)};
}

std::optional<AttributeValue> attributeValueFrom(CFTypeRef value) {
    const CFTypeID type = CFGetTypeID(value);
    if (type == AXValueGetTypeID())
        return geometryFrom(static_cast<AXValueRef>(value));
    if (type == AXUIElementGetTypeID())
        return sharedElement(value);
    if (type == CFArrayGetTypeID())
        return elementsFrom(static_cast<CFArrayRef>(value));
    if (type == CFStringGetTypeID())
        return stringFrom((__bridge NSString*)static_cast<CFStringRef>(value));
    // Some applications give truth values as numbers; those stay numbers.
    if (type == CFBooleanGetTypeID())
        return CFEqual(value, kCFBooleanTrue) != 0;
    if (type == CFNumberGetTypeID())
        return [(__bridge NSNumber*)value doubleValue];
    return {};
}

CfRef<CFTypeRef> cfValue(const AttributeValue& value) {
    return std::visit(Expression(), value);
}

} // namespace tessarel::macos
