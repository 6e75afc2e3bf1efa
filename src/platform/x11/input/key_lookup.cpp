// SPDX-License-Identifier: MIT

#include "platform/x11/input/key_lookup.h"

#include "platform/x11/input/modifier_flags.h"
#include "platform/xkb/keycode_table.h"

#include <limits>

namespace tessarel::x11 {

std::optional<KeyDown> keyDown(std::uint32_t keycode, std::uint32_t state) {
    if (keycode > std::numeric_limits<std::uint8_t>::max())
        return std::nullopt;
    const auto keyCode = xkb::virtualKeyOf(static_cast<std::uint8_t>(keycode));
    return keyCode ? std::optional(KeyDown{*keyCode, modifierFlags(state)}) : std::nullopt;
}

bool isKeyHeld(Connection& connection, std::uint32_t keycode) {
    if (keycode > std::numeric_limits<std::uint8_t>::max())
        return false;
    const auto keys = connection.reply<xcb_query_keymap_reply>(xcb_query_keymap(connection.xcb()));
    // The reply is a bit vector with one bit per keycode, least significant bit first.
    return keys && (keys->keys[keycode / 8] >> (keycode % 8) & 1) != 0;
}

} // namespace tessarel::x11
