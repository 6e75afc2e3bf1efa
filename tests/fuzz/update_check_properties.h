#pragma once

#include <string>

namespace tessarel::fuzz {

/// A document is read the same each time, or not at all. False when it is not.
[[nodiscard]] bool isReadTheSameAgain(const std::string& document);

/// "Is newer" puts three versions in an order, whatever they look like. False when it does not.
[[nodiscard]] bool areInAnOrder(const std::string& a, const std::string& b, const std::string& c);

} // namespace tessarel::fuzz
