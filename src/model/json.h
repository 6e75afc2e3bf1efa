// SPDX-License-Identifier: MIT

#pragma once

// The library asserts that strtod consumed the whole number, which fails in a C locale whose decimal point
// has several bytes. A wrong number is better than an abort, so assertions are disabled.
#define JSON_ASSERT(condition) static_cast<void>(condition)
#include <nlohmann/json.hpp>

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace tessarel {

/// A value of a JSON document.
using Json = nlohmann::json;

/// Maximum number of arrays and objects that may lie inside each other. It bounds the memory for a document;
/// reading needs no more stack for a deep document than for a flat one.
inline constexpr std::size_t kDeepestJson = 128UL * 1024;

/// Parses a JSON document in UTF-8. Returns `std::nullopt` if it is not valid JSON, contains a zero byte, or
/// is nested deeper than `kDeepestJson`. If a name occurs repeatedly in an object, the last member counts.
///
/// A number too large for a double becomes a value that is neither a number nor of any other type that a
/// document may have, so it matters only to those who need it. A number too small for a double becomes 0.
/// Numbers with a fraction are read correctly only if the decimal point of the C locale is a single byte.
[[nodiscard]] std::optional<Json> readJson(std::string_view document);

/// The members of a JSON object: by name, the JSON text of each value without white space between its parts.
using JsonMembers = std::map<std::string, std::string, std::less<>>;

/// Returns the members of the object that `document` consists of, with values of any kind, size and depth as
/// they are written there. Returns `std::nullopt` if `readJson` does not return an object for the document.
[[nodiscard]] std::optional<JsonMembers> readJsonMembers(std::string_view document);

/// Returns the document of an object with these members, on one line and sorted by name. Returns
/// `std::nullopt` if a name is not UTF-8.
[[nodiscard]] std::optional<std::string> writeJsonMembers(const JsonMembers& members);

/// Returns the document for `value`, on one line and with members sorted by name. Returns `std::nullopt` if a
/// number is not finite or a text is not UTF-8. Needs stack for every level of `value`, so do not write what
/// was read from a document.
[[nodiscard]] std::optional<std::string> writeJson(const Json& value);

} // namespace tessarel
