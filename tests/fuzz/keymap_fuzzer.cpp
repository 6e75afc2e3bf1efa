// SPDX-License-Identifier: MIT

#include "fuzz/input.h"
#include "platform/plasma/shortcut_keys.h"
#include "platform/xkb/keycode_table.h"
#include "platform/xkb/keymap.h"

#include <cstddef>
#include <cstdint>
#include <limits>

using namespace tessarel;

namespace {

/// Requires that a key code outside the table has no key, and that the others have the key of the table.
void checkTable(std::uint8_t keycode, std::uint32_t virtualKey) {
    const auto there = xkb::virtualKeyOf(keycode);
    fuzz::require(!there || xkb::keycodeOf(*there) == keycode, "each X11 keycode has its own key");
    const auto back = xkb::keycodeOf(virtualKey);
    fuzz::require(!back || xkb::virtualKeyOf(*back) == virtualKey, "each virtual key has its own key");
}

} // namespace

/// The library's parser leaks parts of malformed descriptions.
extern "C" const char* __lsan_default_suppressions() { // NOLINT(bugprone-reserved-identifier): named by clang
    return "leak:libxkbcommon";
}

/// Reads a key and modifiers, then the description of a keymap.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Input input(data, size);
    const std::uint32_t layout = input.byte();
    const std::uint32_t level = input.byte();
    const std::uint32_t keycode = input.word();
    const std::uint32_t virtualKey = input.byte();
    const std::uint32_t mods = input.word();
    checkTable(input.byte(), virtualKey);
    const auto keymap = xkb::Keymap::parsed(input.rest());
    (void)keymap.symbol(keycode, layout, level);
    (void)keymap.symbol(std::numeric_limits<std::uint32_t>::max(), layout, level);
    for (const xkb::PhysicalKey& key : xkb::kPhysicalKeys) {
        const auto shortcut = plasma::shortcutKey(keymap, layout, key.virtualKey, mods);
        fuzz::require(!shortcut || keymap.symbol(key.keycode, layout, 0) != 0 ||
                          keymap.symbol(key.keycode, layout, 1) != 0,
                      "a shortcut is that of a key that types something");
    }
    return 0;
}
