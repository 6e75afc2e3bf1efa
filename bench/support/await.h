// SPDX-License-Identifier: MIT

#pragma once

#include "support/clock.h"

#include <functional>

namespace tessarel::bench {

/// Checks a condition every other millisecond until it holds, at most for `patience`. Returns whether it
/// holds.
[[nodiscard]] bool becomesTrue(const std::function<bool()>& holds, Clock::duration patience);

/// Waits until a condition holds. Throws std::runtime_error, which says `what` was expected, after ten
/// seconds.
void await(const char* what, const std::function<bool()>& holds);

} // namespace tessarel::bench
