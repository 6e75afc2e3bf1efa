// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>

namespace tessarel {

/// A process id of the operating system, which may be reused once its process has exited.
using ProcessId = std::int32_t;

} // namespace tessarel
