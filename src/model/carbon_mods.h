#pragma once

#include <cstdint>

namespace tessarel {

/// Modifier flags of a key event: the device-independent bits and any others.
using ModifierFlags = std::uint64_t;

inline constexpr ModifierFlags kShiftFlag = 0x20000;
inline constexpr ModifierFlags kControlFlag = 0x40000;
inline constexpr ModifierFlags kOptionFlag = 0x80000;
inline constexpr ModifierFlags kCommandFlag = 0x100000;

/// The modifier bits of a `Binding` for an event's flags. Flags other than the four above are ignored.
[[nodiscard]] std::int64_t carbonMods(ModifierFlags from);

} // namespace tessarel
