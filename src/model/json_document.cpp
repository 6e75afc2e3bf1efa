#include "model/json_document.h"

// The library asserts that strtod consumed the whole number, which fails in a C locale whose decimal point
// has several bytes. `DocumentBuilder` parses such numbers itself, so assertions are disabled.
#define JSON_ASSERT(condition) static_cast<void>(condition)
#include <nlohmann/json.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <limits>
#include <system_error>

namespace tessarel {
namespace {

using nlohmann::json;

/// Our own documents have at most five levels; the rest leaves room for unknown members.
constexpr std::size_t kDeepestNesting = 64;

/// Builds the value that the parser reads. Rejects documents that are nested too deeply.
class DocumentBuilder : public nlohmann::json_sax<json> {
public:
    [[nodiscard]] JsonValue takeDocument() { return std::move(m_document); }

    bool null() override { return add({}); }
    bool boolean(bool value) override { return add(value); }
    bool number_integer(number_integer_t value) override { return add(std::int64_t{value}); }
    bool number_unsigned(number_unsigned_t value) override {
        constexpr auto kLargest = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
        return value <= kLargest ? add(static_cast<std::int64_t>(value)) : add(static_cast<double>(value));
    }
    // The parser has replaced a decimal point with that of the C locale. If that one has several bytes,
    // `value` is wrong.
    bool number_float(number_float_t value, const string_t& text) override {
        const auto point = text.find_first_not_of("0123456789+-eE");
        if (point == std::string::npos)
            return add(value);
        const auto number = parseDecimals(text, point);
        return number && add(*number);
    }
    bool string(string_t& value) override { return add(std::move(value)); }
    bool binary(binary_t&) override { return false; }

    bool start_object(std::size_t) override { return open(JsonObject()); }
    bool key(string_t& name) override {
        m_key = std::move(name);
        return true;
    }
    bool end_object() override { return close(); }
    bool start_array(std::size_t) override { return open(JsonArray()); }
    bool end_array() override { return close(); }

    bool parse_error(std::size_t, const std::string&, const nlohmann::detail::exception&) override {
        return false;
    }

private:
    /// Parses a JSON number whose decimal point, whatever character it is, is at index `point`. Returns
    /// `std::nullopt` if the number is too large for a double.
    ///
    /// macOS 13 lacks std::from_chars for doubles, and the result of std::strtod depends on the C locale
    /// unless the text has no decimal point. So "12.5e3" is parsed as "125e2".
    static std::optional<double> parseDecimals(const std::string& text, std::size_t point) {
        const auto digitsEnd = std::min(text.find_first_of("eE", point), text.size());
        int exponent = 0;
        if (digitsEnd < text.size()) {
            const auto sign = digitsEnd + 1;
            const char* const begin = text.data() + sign + (text[sign] == '+' ? 1 : 0);
            if (std::from_chars(begin, text.data() + text.size(), exponent).ec != std::errc())
                return std::nullopt;
        }
        const std::string decimals = text.substr(point + 1, digitsEnd - point - 1);
        const auto shifted = std::int64_t{exponent} - static_cast<std::int64_t>(decimals.size());
        const double value =
            std::strtod((text.substr(0, point) + decimals + 'e' + std::to_string(shifted)).c_str(), nullptr);
        return std::isfinite(value) ? std::optional(value) : std::nullopt;
    }

    /// Stores `value` in the innermost open container, or as the document itself, and returns the stored
    /// value.
    JsonValue& place(JsonValue value) {
        if (m_open.empty())
            return m_document = std::move(value);
        JsonValue& parent = *m_open.back();
        if (auto* const object = parent.as<JsonObject>())
            return (*object)[m_key] = std::move(value);
        return parent.as<JsonArray>()->emplace_back(std::move(value));
    }

    bool add(JsonValue value) {
        place(std::move(value));
        return true;
    }

    bool open(JsonValue container) {
        if (m_open.size() == kDeepestNesting)
            return false;
        m_open.push_back(&place(std::move(container)));
        return true;
    }

    bool close() {
        m_open.pop_back();
        return true;
    }

    JsonValue m_document;
    std::vector<JsonValue*> m_open;
    std::string m_key;
};

/// Converts a value to the library's type. Returns false if a number is not finite, because the library would
/// write null for it.
///
/// Member functions instead of free ones, because they can call each other regardless of their order.
struct Writer {
    static bool write(const JsonValue& from, json& to) {
        if (const auto* const array = from.as<JsonArray>())
            return write(*array, to);
        if (const auto* const object = from.as<JsonObject>())
            return write(*object, to);
        if (const auto* const number = from.as<double>())
            return std::isfinite(*number) && assign(number, to);
        return from.isNull() || assign(from.as<bool>(), to) || assign(from.as<std::int64_t>(), to) ||
               assign(from.as<std::string>(), to);
    }

    static bool write(const JsonArray& from, json& to) {
        to = json::array();
        for (const JsonValue& item : from) {
            if (!write(item, to.emplace_back(nullptr)))
                return false;
        }
        return true;
    }

    static bool write(const JsonObject& from, json& to) {
        to = json::object();
        for (const auto& [name, value] : from) {
            if (!write(value, to[name]))
                return false;
        }
        return true;
    }

    template <typename T>
    static bool assign(const T* from, json& to) {
        if (from)
            to = *from;
        return from != nullptr;
    }
};

} // namespace

std::optional<JsonValue> readJson(std::string_view document) {
    DocumentBuilder builder;
    if (!json::sax_parse(document, &builder))
        return std::nullopt;
    return builder.takeDocument();
}

std::optional<std::string> writeJson(const JsonValue& value) {
    json root;
    if (!Writer::write(value, root))
        return std::nullopt;
    try {
        // Throws for a text that is not UTF-8.
        return root.dump();
    } catch (const json::type_error&) {
        return std::nullopt;
    }
}

} // namespace tessarel
