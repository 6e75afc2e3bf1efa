// SPDX-License-Identifier: MIT

#pragma once

#include "ports/desktop/process_id.h"

#include <cstdint>
#include <optional>

namespace tessarel::x11 {

/// Returns when process `pid` was started, in clock ticks since boot, which distinguishes it from an earlier
/// process with the same id. Returns `std::nullopt` when the process has exited, is a zombie, or is not
/// visible from here (for instance in another PID namespace).
[[nodiscard]] std::optional<std::uint64_t> processStart(ProcessId pid);

} // namespace tessarel::x11
