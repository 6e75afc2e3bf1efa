// SPDX-License-Identifier: MIT

#pragma once

#include "platform/x11/server/connection.h"

#include <cstdint>

namespace tessarel::x11 {

/// Returns the modifier bits that Caps Lock, Num Lock and Scroll Lock set under the current keyboard mapping.
/// A lock key without a modifier adds no bit. Takes one round trip; if it fails, returns only Lock (Caps
/// Lock).
[[nodiscard]] std::uint16_t lockModifiers(Connection& connection);

} // namespace tessarel::x11
