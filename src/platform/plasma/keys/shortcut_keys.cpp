// SPDX-License-Identifier: MIT

#include "platform/plasma/keys/shortcut_keys.h"

#include "model/carbon_mods.h"
#include "platform/xkb/keycode_table.h"

#include <algorithm>
#include <array>
#include <utility>
#include <xkbcommon/xkbcommon.h>

namespace tessarel::plasma {

namespace {

// Modifiers and keys by the numbers of Qt, which are part of the interface of the global shortcuts.
constexpr std::int32_t kQtShift = 0x02000000;
constexpr std::int32_t kQtControl = 0x04000000;
constexpr std::int32_t kQtAlt = 0x08000000;
constexpr std::int32_t kQtMeta = 0x10000000;
constexpr std::int32_t kQtF1 = 0x01000030;

constexpr std::array kQtModifiers = std::to_array<std::pair<ModifierFlags, std::int32_t>>({
    {kShiftFlag, kQtShift},
    {kControlFlag, kQtControl},
    {kOptionFlag, kQtAlt},
    {kCommandFlag, kQtMeta},
});

constexpr std::array kQtKeys = std::to_array<std::pair<xkb_keysym_t, std::int32_t>>({
    {XKB_KEY_Escape, 0x01000000},    {XKB_KEY_Tab, 0x01000001},      {XKB_KEY_BackSpace, 0x01000003},
    {XKB_KEY_Return, 0x01000004},    {XKB_KEY_KP_Enter, 0x01000005}, {XKB_KEY_Insert, 0x01000006},
    {XKB_KEY_KP_Insert, 0x01000006}, {XKB_KEY_Delete, 0x01000007},   {XKB_KEY_KP_Delete, 0x01000007},
    {XKB_KEY_KP_Begin, 0x0100000b},  {XKB_KEY_Home, 0x01000010},     {XKB_KEY_KP_Home, 0x01000010},
    {XKB_KEY_End, 0x01000011},       {XKB_KEY_KP_End, 0x01000011},   {XKB_KEY_Left, 0x01000012},
    {XKB_KEY_KP_Left, 0x01000012},   {XKB_KEY_Up, 0x01000013},       {XKB_KEY_KP_Up, 0x01000013},
    {XKB_KEY_Right, 0x01000014},     {XKB_KEY_KP_Right, 0x01000014}, {XKB_KEY_Down, 0x01000015},
    {XKB_KEY_KP_Down, 0x01000015},   {XKB_KEY_Prior, 0x01000016},    {XKB_KEY_KP_Prior, 0x01000016},
    {XKB_KEY_Next, 0x01000017},      {XKB_KEY_KP_Next, 0x01000017},  {XKB_KEY_Num_Lock, 0x01000025},
    {XKB_KEY_Menu, 0x01000055},
});

/// Returns the number of Qt for a key symbol. Letters count as capitals.
std::optional<std::int32_t> qtKey(xkb_keysym_t symbol) {
    const auto* const named =
        std::ranges::find(kQtKeys, symbol, &std::pair<xkb_keysym_t, std::int32_t>::first);
    if (named != kQtKeys.end())
        return named->second;
    if (symbol >= XKB_KEY_F1 && symbol <= XKB_KEY_F35)
        return kQtF1 + static_cast<std::int32_t>(symbol - XKB_KEY_F1);
    const std::uint32_t character = xkb_keysym_to_utf32(xkb_keysym_to_upper(symbol));
    constexpr std::uint32_t kSpace = 0x20;
    constexpr std::uint32_t kDelete = 0x7F;
    if (character < kSpace || character == kDelete)
        return std::nullopt;
    return static_cast<std::int32_t>(character);
}

} // namespace

std::optional<std::int32_t> shortcutKey(const xkb::Keymap& keymap, std::uint32_t layout,
                                        std::uint32_t keyCode, std::uint32_t mods) {
    const auto keycode = xkb::keycodeOf(keyCode);
    const ModifierFlags flags = modifierFlags(std::int64_t{mods});
    if (!keycode || carbonMods(flags) != std::int64_t{mods})
        return std::nullopt;
    auto key = qtKey(keymap.symbol(*keycode, layout, 0));
    bool isShiftUsedUp = false;
    if ((flags & kShiftFlag) != 0) {
        const auto shifted = qtKey(keymap.symbol(*keycode, layout, 1));
        isShiftUsedUp = shifted && shifted != key;
        if (isShiftUsedUp)
            key = shifted;
    }
    if (!key)
        return 0;
    std::int32_t number = *key;
    for (const auto& [flag, modifier] : kQtModifiers) {
        if ((flags & flag) != 0 && !(flag == kShiftFlag && isShiftUsedUp))
            number |= modifier;
    }
    return number;
}

} // namespace tessarel::plasma
