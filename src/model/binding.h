// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>

namespace tessarel {

/// Modifier bits of a binding, which are also stored in the settings document. The values are those of
/// Carbon.
inline constexpr std::int64_t kCmdKey = 256;
inline constexpr std::int64_t kShiftKey = 512;
inline constexpr std::int64_t kOptKey = 2048;
inline constexpr std::int64_t kCtrlKey = 4096;

/// A hot key: one key together with modifiers.
///
/// Holds any values. Whether such a combination exists is not known before it is registered.
struct Binding {
    /// Virtual key code of the non-modifier key: a physical key, whatever its label.
    std::int64_t keyCode = 0;
    /// Sum of the modifier bits above.
    std::int64_t mods = 0;

    bool operator==(const Binding&) const = default;
};

} // namespace tessarel
