// SPDX-License-Identifier: MIT

#pragma once

#include "model/carbon_mods.h"

#include <cstdint>
#include <optional>

namespace tessarel::x11 {

/// The X11 mask of the four modifiers that bindings use: Shift, Control, Mod1 and Mod4.
inline constexpr std::uint16_t kAllModifiers = 0x4d;

/// Returns the modifier flags for the mask of keys and buttons that the server reports as held: Control is
/// Ctrl, Mod1 (Alt) is Opt and Mod4 (Super) is Cmd.
[[nodiscard]] ModifierFlags modifierFlags(std::uint32_t state);

/// Returns the server's mask for the modifier bits of a binding, or `std::nullopt` when `mods` has further
/// bits.
[[nodiscard]] std::optional<std::uint16_t> modifierMask(std::uint32_t mods);

} // namespace tessarel::x11
