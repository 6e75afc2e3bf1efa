// SPDX-License-Identifier: MIT

#pragma once

#include <string>

namespace tessarel::fuzz {

/// Returns whether decoding the document twice gives the same result, be it a feed or an error.
[[nodiscard]] bool isReadTheSameAgain(const std::string& document);

/// Returns whether `Updater::isNewer` orders three arbitrary strings consistently: `a` is not newer than
/// itself, `a` and `b` are not both newer than each other, and the order of `a`, `b` and `c` is transitive.
[[nodiscard]] bool areInAnOrder(const std::string& a, const std::string& b, const std::string& c);

} // namespace tessarel::fuzz
