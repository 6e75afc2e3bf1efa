#pragma once

#include "platform/x11/server/connection.h"

#include <cstdint>

namespace tessarel::x11 {

/// The modifiers that Caps Lock, Num Lock and Scroll Lock switch on under the present keyboard mapping; a key
/// that locks no modifier adds none. Takes one round trip.
[[nodiscard]] std::uint16_t lockModifiers(Connection& connection);

} // namespace tessarel::x11
