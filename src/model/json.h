#pragma once

// The library asserts that strtod consumed the whole number, which fails in a C locale whose decimal point
// has several bytes. A wrong number is better than an abort, so assertions are disabled.
#define JSON_ASSERT(condition) static_cast<void>(condition)
#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <string_view>

namespace tessarel {

/// A value of a JSON document.
using Json = nlohmann::json;

/// Parses a JSON document in UTF-8. Returns `std::nullopt` if it is not valid JSON or contains a number too
/// large for a double. If a name occurs repeatedly in an object, the last member counts.
///
/// Numbers with a fraction are read correctly only if the decimal point of the C locale is a single byte.
[[nodiscard]] std::optional<Json> readJson(std::string_view document);

/// Returns the document for `value`, on one line and with members sorted by name. Returns `std::nullopt` if a
/// number is not finite or a text is not UTF-8.
[[nodiscard]] std::optional<std::string> writeJson(const Json& value);

} // namespace tessarel
