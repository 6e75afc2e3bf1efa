// SPDX-License-Identifier: MIT

#pragma once

#include "platform/macos/objects/refs.h"
#include "ports/desktop/accessibility_port.h"

#include <ApplicationServices/ApplicationServices.h>
#include <optional>

// Conversions between values of the accessibility API and those of `AccessibilityPort`. For Objective-C++
// sources only.

namespace tessarel::macos {

/// Returns the API's object behind `element`, not retained; null for an element without a handle.
[[nodiscard]] inline AXUIElementRef axElement(const Element& element) {
    return static_cast<AXUIElementRef>(element.handle.get());
}

/// Returns an element that owns the reference; an element without a handle when `element` is null.
[[nodiscard]] Element elementFrom(CfRef<AXUIElementRef> element);

/// Converts a value that was read; `std::nullopt` for types that the port does not know. Of an array, the
/// entries that are no elements are left out. `value` must not be null and is not released.
[[nodiscard]] std::optional<AttributeValue> attributeValueFrom(CFTypeRef value);

/// Converts a value that is to be written. Returns null for what cannot be written: numbers that are not
/// finite, text that is not valid UTF-8, elements and lists of elements.
[[nodiscard]] CfRef<CFTypeRef> cfValue(const AttributeValue& value);

} // namespace tessarel::macos
