#pragma once

#include "platform/x11/server/connection.h"
#include "ports/local_keys_port.h"

#include <cstdint>
#include <optional>

namespace tessarel::x11 {

/// What the press of `keycode` means when the server says that `state` is held, by the same tables as hot
/// keys are claimed; none for a key that bindings cannot name, as every modifier key is.
[[nodiscard]] std::optional<KeyDown> keyDown(std::uint32_t keycode, std::uint32_t state);

/// Whether the key is down at this moment; waits for the server.
[[nodiscard]] bool isKeyHeld(Connection& connection, std::uint32_t keycode);

} // namespace tessarel::x11
