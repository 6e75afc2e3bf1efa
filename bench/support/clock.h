// SPDX-License-Identifier: MIT

#pragma once

#include <chrono>

namespace tessarel::bench {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

} // namespace tessarel::bench
