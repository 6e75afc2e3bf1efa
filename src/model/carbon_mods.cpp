// SPDX-License-Identifier: MIT

#include "model/carbon_mods.h"

#include "model/binding.h"

#include <array>
#include <utility>

namespace tessarel {
namespace {

constexpr std::array<std::pair<ModifierFlags, std::int64_t>, 4> kBits{{
    {kControlFlag, kCtrlKey},
    {kOptionFlag, kOptKey},
    {kShiftFlag, kShiftKey},
    {kCommandFlag, kCmdKey},
}};

} // namespace

std::int64_t carbonMods(ModifierFlags from) {
    std::int64_t mods = 0;
    for (const auto& [flag, bit] : kBits) {
        if ((from & flag) != 0)
            mods |= bit;
    }
    return mods;
}

ModifierFlags modifierFlags(std::int64_t mods) {
    ModifierFlags flags = 0;
    for (const auto& [flag, bit] : kBits) {
        if ((mods & bit) != 0)
            flags |= flag;
    }
    return flags;
}

} // namespace tessarel
