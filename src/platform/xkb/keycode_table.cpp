// SPDX-License-Identifier: MIT

#include "platform/xkb/keycode_table.h"

#include <algorithm>

namespace tessarel::xkb {

std::optional<std::uint8_t> keycodeOf(std::uint32_t virtualKey) {
    const auto key = std::ranges::find(kPhysicalKeys, virtualKey, &PhysicalKey::virtualKey);
    return key == kPhysicalKeys.end() ? std::nullopt : std::optional(key->keycode);
}

std::optional<std::uint8_t> virtualKeyOf(std::uint8_t keycode) {
    const auto key = std::ranges::find(kPhysicalKeys, keycode, &PhysicalKey::keycode);
    return key == kPhysicalKeys.end() ? std::nullopt : std::optional(key->virtualKey);
}

} // namespace tessarel::xkb
