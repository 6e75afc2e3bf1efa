// SPDX-License-Identifier: MIT

#include "platform/x11/input/modifier_flags.h"

#include <xcb/xproto.h>

#include <array>

namespace tessarel::x11 {

namespace {

/// One modifier key in both encodings: X11 mask and event flag.
struct Modifier {
    std::uint16_t mask;
    ModifierFlags flag;
};

constexpr std::array kModifierTable = std::to_array<Modifier>({
    {XCB_MOD_MASK_SHIFT, kShiftFlag},
    {XCB_MOD_MASK_CONTROL, kControlFlag},
    {XCB_MOD_MASK_1, kOptionFlag},
    {XCB_MOD_MASK_4, kCommandFlag},
});

static_assert(kAllModifiers == (XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1 | XCB_MOD_MASK_4));

} // namespace

ModifierFlags modifierFlags(std::uint32_t state) {
    ModifierFlags flags = 0;
    for (const Modifier& modifier : kModifierTable)
        flags |= (state & modifier.mask) != 0 ? modifier.flag : 0;
    return flags;
}

std::optional<std::uint16_t> modifierMask(std::uint32_t mods) {
    const ModifierFlags flags = tessarel::modifierFlags(mods);
    if (carbonMods(flags) != mods)
        return std::nullopt;
    std::uint16_t mask = 0;
    for (const Modifier& modifier : kModifierTable)
        mask |= (flags & modifier.flag) != 0 ? modifier.mask : std::uint16_t{0};
    return mask;
}

} // namespace tessarel::x11
