#pragma once

#include "ports/process_id.h"

#include <cstdint>
#include <optional>

namespace tessarel::x11 {

/// When process `pid` was started, in the system's own units since it was booted: tells it from an earlier
/// one of the same number. Empty when the process has ended, or cannot be seen from here.
[[nodiscard]] std::optional<std::uint64_t> processStart(ProcessId pid);

} // namespace tessarel::x11
