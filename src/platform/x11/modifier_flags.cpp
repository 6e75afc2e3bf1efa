#include "platform/x11/modifier_flags.h"

#include <xcb/xproto.h>

#include <array>

namespace tessarel::x11 {

namespace {

struct ModifierBit {
    std::uint32_t server;
    ModifierFlags flag;
};

constexpr std::array kModifierBits = std::to_array<ModifierBit>({
    {XCB_MOD_MASK_SHIFT, kShiftFlag},
    {XCB_MOD_MASK_CONTROL, kControlFlag},
    {XCB_MOD_MASK_1, kOptionFlag},
    {XCB_MOD_MASK_4, kCommandFlag},
});

} // namespace

ModifierFlags modifierFlags(std::uint32_t state) {
    ModifierFlags flags = 0;
    for (const auto& [server, flag] : kModifierBits)
        flags |= (state & server) != 0 ? flag : 0;
    return flags;
}

} // namespace tessarel::x11
