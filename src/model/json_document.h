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
/// Each name once.
using JsonObject = std::map<std::string, JsonValue, std::less<>>;

/// A value of a JSON document; null unless made from something else.
class JsonValue {
public:
    JsonValue() = default;
    // Not explicit: a document is written down the way it reads.
    JsonValue(bool value) : m_value(value) {}
    JsonValue(std::int64_t value) : m_value(value) {}
    JsonValue(double value) : m_value(value) {}
    JsonValue(std::string value) : m_value(std::move(value)) {}
    JsonValue(JsonArray value) : m_value(std::move(value)) {}
    JsonValue(JsonObject value) : m_value(std::move(value)) {}
    /// Text that is not owned, a pointer above all, would be taken for true or false.
    JsonValue(const void*) = delete;

    [[nodiscard]] bool isNull() const { return std::holds_alternative<std::monostate>(m_value); }

    /// The value as a `T`, which is one of the types above; null when it is of another.
    template <typename T>
    [[nodiscard]] const T* as() const {
        return std::get_if<T>(&m_value);
    }
    template <typename T>
    [[nodiscard]] T* as() {
        return std::get_if<T>(&m_value);
    }

    /// The member of that name; null when there is none or this is no object.
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

/// The value that `document`, JSON in UTF-8, stands for. A number written without fraction and exponent is an
/// integer if 64 bits with a sign hold it, else a double; of members of one name the last one counts. None if
/// the document is not JSON, a number in it is beyond a double, or it is nested deeper than 64.
[[nodiscard]] std::optional<JsonValue> readJson(std::string_view document);

/// The document for `value`, on one line and with members in the order of their names; none if a number is
/// not finite or a text is not UTF-8.
[[nodiscard]] std::optional<std::string> writeJson(const JsonValue& value);

} // namespace tessarel
