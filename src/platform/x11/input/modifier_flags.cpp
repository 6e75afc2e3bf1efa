#include "platform/x11/input/modifier_flags.h"

#include "model/binding.h"

#include <xcb/xproto.h>

#include <array>

namespace tessarel::x11 {

namespace {

/// One modifier key in the three encodings: X11 mask, event flag, bit in a binding.
struct Modifier {
    std::uint16_t mask;
    ModifierFlags flag;
    std::uint32_t binding;
};

constexpr std::array kModifierTable = std::to_array<Modifier>({
    {XCB_MOD_MASK_SHIFT, kShiftFlag, kShiftKey},
    {XCB_MOD_MASK_CONTROL, kControlFlag, kCtrlKey},
    {XCB_MOD_MASK_1, kOptionFlag, kOptKey},
    {XCB_MOD_MASK_4, kCommandFlag, kCmdKey},
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
    std::uint16_t mask = 0;
    for (const Modifier& modifier : kModifierTable) {
        if ((mods & modifier.binding) == 0)
            continue;
        mods &= ~modifier.binding;
        mask |= modifier.mask;
    }
    return mods == 0 ? std::optional(mask) : std::nullopt;
}

} // namespace tessarel::x11
