#pragma once

#include <cstdint>

namespace tessarel {

/// Modifier bits of a binding.
inline constexpr std::int64_t kCmdKey = 256;
inline constexpr std::int64_t kShiftKey = 512;
inline constexpr std::int64_t kOptKey = 2048;
inline constexpr std::int64_t kCtrlKey = 4096;

/// A hot key: one key together with modifiers.
///
/// Any value can be stored; whether the combination exists is found out when it is registered.
struct Binding {
    /// Virtual key code of the key that is not a modifier: a place on the keyboard, whatever its label.
    std::int64_t keyCode = 0;
    /// Sum of the modifier bits above.
    std::int64_t mods = 0;

    bool operator==(const Binding&) const = default;
};

} // namespace tessarel
