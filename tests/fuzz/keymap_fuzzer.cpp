// SPDX-License-Identifier: MIT

#include "fuzz/input.h"
#include "platform/plasma/keys/shortcut_keys.h"
#include "platform/xkb/keycode_table.h"
#include "platform/xkb/keymap.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

using namespace tessarel;

namespace {

/// A key, and what it types in two layouts, without and with Shift.
struct Key {
    std::uint8_t keycode = 0;
    std::array<std::array<std::uint32_t, 2>, 2> symbols{};
};

/// Takes a key symbol: one of the first 65,536, or one that stands for a Unicode character.
std::uint32_t takeSymbol(fuzz::Input& input) {
    constexpr std::uint32_t kUnicode = 0x01000000;
    const bool isUnicode = input.below(4) == 3;
    const std::uint32_t symbol = input.word();
    return isUnicode ? kUnicode | symbol : symbol;
}

std::vector<Key> takeKeys(fuzz::Input& input) {
    std::vector<Key> keys(1 + input.below(4));
    std::size_t place = 0;
    for (Key& key : keys) {
        place =
            (place + 1 + input.below(xkb::kPhysicalKeys.size() / keys.size())) % xkb::kPhysicalKeys.size();
        key.keycode = xkb::kPhysicalKeys.at(place).keycode;
        for (auto& layout : key.symbols)
            for (std::uint32_t& symbol : layout)
                symbol = takeSymbol(input);
    }
    return keys;
}

/// Describes a keymap in the notation of the library. Its parser is not under test: it cannot be handed an
/// arbitrary description, because it crashes at some.
std::string descriptionOf(const std::vector<Key>& keys) {
    std::string keycodes;
    std::string symbols;
    for (const Key& key : keys) {
        const std::string name = "<K" + std::to_string(key.keycode) + ">";
        keycodes += name + "=" + std::to_string(key.keycode) + ";";
        symbols += "key " + name + "{type=\"TWO_LEVEL\"";
        for (std::size_t layout = 0; layout < key.symbols.size(); ++layout) {
            const auto& levels = key.symbols.at(layout);
            symbols += ",symbols[Group" + std::to_string(layout + 1) + "]=[" + std::to_string(levels[0]) +
                       "," + std::to_string(levels[1]) + "]";
        }
        symbols += "};";
    }
    return "xkb_keymap{xkb_keycodes{minimum=8;maximum=255;" + keycodes +
           "};xkb_types{type \"TWO_LEVEL\"{modifiers=Shift;map[Shift]=Level2;};};"
           "xkb_compatibility{};xkb_symbols{" +
           symbols + "};};";
}

/// Requires that each key types what the description says. Without symbols, a layout may stand for another;
/// the numbers up to 9 mean digits.
void checkSymbols(const xkb::Keymap& keymap, const Key& key) {
    for (std::uint32_t layout = 0; layout < key.symbols.size(); ++layout) {
        const auto& levels = key.symbols.at(layout);
        if (std::ranges::min(levels) <= 9)
            return;
        for (std::uint32_t level = 0; level < levels.size(); ++level)
            fuzz::require(keymap.symbol(key.keycode, layout, level) == levels.at(level),
                          "a key types what its keymap says");
    }
}

/// Requires that a key code outside the table has no key, and that the others have the key of the table.
void checkTable(std::uint8_t keycode, std::uint32_t virtualKey) {
    const auto there = xkb::virtualKeyOf(keycode);
    fuzz::require(!there || xkb::keycodeOf(*there) == keycode, "each X11 keycode has its own key");
    const auto back = xkb::keycodeOf(virtualKey);
    fuzz::require(!back || xkb::virtualKeyOf(*back) == virtualKey, "each virtual key has its own key");
}

} // namespace

/// Reads a layout, modifiers and key codes, then the keys of a keymap.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Input input(data, size);
    const std::uint32_t layout = input.byte();
    const std::uint32_t level = input.byte();
    const std::uint32_t keycode = input.word();
    const std::uint32_t virtualKey = input.byte();
    const std::uint32_t mods = input.word();
    checkTable(input.byte(), virtualKey);
    const auto keys = takeKeys(input);
    const auto keymap = xkb::Keymap::parsed(descriptionOf(keys));
    (void)keymap.symbol(keycode, layout, level);
    (void)keymap.symbol(std::numeric_limits<std::uint32_t>::max(), layout, level);
    for (const Key& key : keys)
        checkSymbols(keymap, key);
    for (const xkb::PhysicalKey& key : xkb::kPhysicalKeys) {
        const auto shortcut = plasma::shortcutKey(keymap, layout, key.virtualKey, mods);
        fuzz::require(!shortcut || keymap.symbol(key.keycode, layout, 0) != 0 ||
                          keymap.symbol(key.keycode, layout, 1) != 0,
                      "a shortcut is that of a key that types something");
    }
    return 0;
}
