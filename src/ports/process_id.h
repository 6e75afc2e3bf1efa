#pragma once

#include <cstdint>

namespace tessarel {

using ProcessId = std::int32_t;

} // namespace tessarel
