// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>

namespace tessarel {

/// Modifier flags of a keyboard or mouse event, with the bit values of AppKit's `NSEventModifierFlags`. Bits
/// other than the four below may be set.
using ModifierFlags = std::uint64_t;

inline constexpr ModifierFlags kShiftFlag = 0x20000;
inline constexpr ModifierFlags kControlFlag = 0x40000;
inline constexpr ModifierFlags kOptionFlag = 0x80000;
inline constexpr ModifierFlags kCommandFlag = 0x100000;
/// The flags of all four modifiers.
inline constexpr ModifierFlags kAllModifierFlags = kShiftFlag | kControlFlag | kOptionFlag | kCommandFlag;

/// Returns the modifier bits of a `Binding` for the flags of an event. Other flags are ignored.
[[nodiscard]] std::int64_t carbonMods(ModifierFlags from);

/// Returns the flags of an event for the modifier bits of a `Binding`; the inverse of `carbonMods`. Other
/// bits are ignored.
[[nodiscard]] ModifierFlags modifierFlags(std::int64_t mods);

} // namespace tessarel
