// SPDX-License-Identifier: MIT

#pragma once

#include <optional>

namespace tessarel {

/// Runs the program if this is a session of KDE Plasma on Wayland, and returns its exit code. Returns
/// `std::nullopt` otherwise; then nothing has been started.
[[nodiscard]] std::optional<int> runOnPlasma(const char* programName);

} // namespace tessarel
