// SPDX-License-Identifier: MIT

#pragma once

#include "platform/x11/server/connection.h"
#include "ports/desktop/local_keys_port.h"

#include <cstdint>
#include <optional>

namespace tessarel::x11 {

/// Translates a key press. `state` is the server's modifier mask at the press. The tables are those of the
/// hot keys, so a recorded key is the key that is grabbed later. Returns `std::nullopt` for keys that
/// bindings cannot name, which includes all modifier keys.
[[nodiscard]] std::optional<KeyDown> keyDown(std::uint32_t keycode, std::uint32_t state);

/// Returns whether the key is physically down now. Takes a round trip. Returns false for an invalid keycode.
[[nodiscard]] bool isKeyHeld(Connection& connection, std::uint32_t keycode);

} // namespace tessarel::x11
