#pragma once

#include "model/carbon_mods.h"

#include <cstdint>

namespace tessarel::x11 {

/// The modifier flags of the keys and buttons that the server says are held: Control is Ctrl, Mod1 (Alt) is
/// Opt and Mod4 (Super) is Cmd.
[[nodiscard]] ModifierFlags modifierFlags(std::uint32_t state);

} // namespace tessarel::x11
