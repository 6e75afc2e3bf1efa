#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace tessarel {

class JsonValue;
using JsonArray = std::vector<JsonValue>;
/// Members by name. A name occurs only once.
using JsonObject = std::map<std::string, JsonValue, std::less<>>;

/// A value of a JSON document; null by default.
class JsonValue {
public:
    JsonValue() = default;
    // Implicit, so that nested documents can be written as plain initialiser lists.
    JsonValue(bool value) : m_value(value) {}
    JsonValue(std::int64_t value) : m_value(value) {}
    JsonValue(double value) : m_value(value) {}
    JsonValue(std::string value) : m_value(std::move(value)) {}
    JsonValue(JsonArray value) : m_value(std::move(value)) {}
    JsonValue(JsonObject value) : m_value(std::move(value)) {}
    /// Rejects string literals and other pointers, which would convert to bool.
    JsonValue(const void*) = delete;

    [[nodiscard]] bool isNull() const { return std::holds_alternative<std::monostate>(m_value); }

    /// Returns the value as a `T`, one of the types above, or null if it has another type. A number is either
    /// a `std::int64_t` or a `double`, never both.
    template <typename T>
    [[nodiscard]] const T* as() const {
        return std::get_if<T>(&m_value);
    }
    template <typename T>
    [[nodiscard]] T* as() {
        return std::get_if<T>(&m_value);
    }

    /// Returns the member of that name, or null if there is none or this is not an object.
    [[nodiscard]] const JsonValue* member(std::string_view name) const {
        const auto* const object = as<JsonObject>();
        if (!object)
            return nullptr;
        const auto found = object->find(name);
        return found != object->end() ? &found->second : nullptr;
    }

private:
    std::variant<std::monostate, bool, std::int64_t, double, std::string, JsonArray, JsonObject> m_value;
};

/// Parses a JSON document in UTF-8. Returns `std::nullopt` if it is not valid JSON, contains a number too
/// large for a double, or is nested more than 64 levels deep.
///
/// A number without fraction and exponent becomes a 64-bit signed integer if it fits, otherwise a double. If
/// a name occurs repeatedly in an object, the last member counts.
[[nodiscard]] std::optional<JsonValue> readJson(std::string_view document);

/// Returns the document for `value`, on one line and with members sorted by name. Returns `std::nullopt` if a
/// number is not finite or a text is not UTF-8.
[[nodiscard]] std::optional<std::string> writeJson(const JsonValue& value);

} // namespace tessarel
