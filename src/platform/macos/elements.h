#pragma once

#include "platform/macos/refs.h"
#include "ports/accessibility_port.h"

#include <ApplicationServices/ApplicationServices.h>
#include <optional>

// Between the accessibility interface's values and the port's. For Objective-C++ sources only.

namespace tessarel::macos {

/// The element that the handle stands for; null when it names nothing.
[[nodiscard]] inline AXUIElementRef axElement(const Element& element) {
    return static_cast<AXUIElementRef>(element.handle.get());
}

[[nodiscard]] Element elementFrom(CfRef<AXUIElementRef> element);

/// None for types that the port does not know; a list keeps those of its entries that are elements.
[[nodiscard]] std::optional<AttributeValue> attributeValueFrom(CFTypeRef value);

/// Holds nothing when there is no such value: a number that is not finite, a text that is not UTF-8, an
/// element that names nothing, a list.
[[nodiscard]] CfRef<CFTypeRef> cfValue(const AttributeValue& value);

} // namespace tessarel::macos
