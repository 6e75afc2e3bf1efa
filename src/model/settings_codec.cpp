#include "model/settings_codec.h"

// strtod's end is checked by the library with an assertion that fails under a C locale whose decimal point
// has several bytes. `DocumentBuilder` reads the number's text itself.
#define JSON_ASSERT(condition) static_cast<void>(condition)
#include <nlohmann/json.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <limits>
#include <map>
#include <system_error>
#include <utility>
#include <vector>

namespace tessarel {
namespace {

using nlohmann::json;

/// Nothing in a settings document is nested deeper than four; the rest is room for members unknown today.
constexpr std::size_t kDeepestNesting = 64;

/// 2^63: a double in [-limit, limit) without a fraction is an integer of 64 bits.
constexpr double kIntegerLimit = 9223372036854775808.0;

/// Below it every integer is a double of its own, so it may be written without a fraction.
constexpr double kExactIntegerLimit = 9007199254740992.0;

/// Builds the value that the parser reads, and gives up on what is nested too deep.
class DocumentBuilder : public nlohmann::json_sax<json> {
public:
    [[nodiscard]] json takeDocument() { return std::move(m_document); }

    bool null() override { return add(nullptr); }
    bool boolean(bool value) override { return add(value); }
    bool number_integer(number_integer_t value) override { return add(value); }
    bool number_unsigned(number_unsigned_t value) override { return add(value); }
    // The parser's own value has gone through the C locale, and so has the decimal point in its text.
    bool number_float(number_float_t, const string_t& text) override {
        const auto value = number(text);
        return value && add(*value);
    }
    bool string(string_t& value) override { return add(std::move(value)); }
    bool binary(binary_t&) override { return false; }

    bool start_object(std::size_t) override { return open(json::object()); }
    bool key(string_t& name) override {
        m_key = std::move(name);
        return true;
    }
    bool end_object() override { return close(); }
    bool start_array(std::size_t) override { return open(json::array()); }
    bool end_array() override { return close(); }

    bool parse_error(std::size_t, const std::string&, const nlohmann::detail::exception&) override {
        return false;
    }

private:
    static std::optional<double> number(std::string text) {
        constexpr std::string_view kOthers = "0123456789+-eE";
        const auto point = text.find_first_not_of(kOthers);
        if (point != std::string::npos)
            text[point] = '.';

        double value = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
        if (error != std::errc() || end != text.data() + text.size())
            return std::nullopt;
        return value;
    }

    json& place(json value) {
        if (m_open.empty())
            return m_document = std::move(value);
        json& parent = *m_open.back();
        if (parent.is_object())
            return parent[m_key] = std::move(value);
        return parent.emplace_back(std::move(value));
    }

    bool add(json value) {
        place(std::move(value));
        return true;
    }

    bool open(json container) {
        if (m_open.size() == kDeepestNesting)
            return false;
        m_open.push_back(&place(std::move(container)));
        return true;
    }

    bool close() {
        m_open.pop_back();
        return true;
    }

    json m_document;
    std::vector<json*> m_open;
    std::string m_key;
};

std::optional<json> parse(std::string_view document) {
    DocumentBuilder builder;
    if (!json::sax_parse(document, &builder))
        return std::nullopt;
    return builder.takeDocument();
}

/// Reads a value of each type that occurs in the document; false if the JSON value is of another type.
/// Members of one class, so that lists, maps and the values in them find each other whatever their order.
struct Decoder {
    static bool decode(const json& from, bool& value) {
        if (!from.is_boolean())
            return false;
        value = from.get<bool>();
        return true;
    }

    static bool decode(const json& from, double& value) {
        if (!from.is_number())
            return false;
        value = from.get<double>();
        return true;
    }

    static bool decode(const json& from, std::int64_t& value) {
        if (from.is_number_float())
            return decodeWhole(from.get<double>(), value);
        if (!from.is_number_integer())
            return false;
        constexpr auto kLargest = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
        if (from.is_number_unsigned() && from.get<std::uint64_t>() > kLargest)
            return false;
        value = from.get<std::int64_t>();
        return true;
    }

    static bool decode(const json& from, std::string& value) {
        if (!from.is_string())
            return false;
        value = from.get<std::string>();
        return true;
    }

    static bool decode(const json& from, Zone& zone) {
        return member(from, "enabled", zone.enabled) && member(from, "x", zone.x) &&
               member(from, "y", zone.y) && member(from, "w", zone.w) && member(from, "h", zone.h);
    }

    static bool decode(const json& from, Layout& layout) {
        return member(from, "name", layout.name) && member(from, "zones", layout.zones);
    }

    static bool decode(const json& from, Binding& binding) {
        return member(from, "keyCode", binding.keyCode) && member(from, "mods", binding.mods);
    }

    template <typename T>
    static bool decode(const json& from, std::vector<T>& list) {
        if (!from.is_array())
            return false;
        list.assign(from.size(), T());
        for (std::size_t index = 0; index < list.size(); ++index) {
            if (!decode(from[index], list[index]))
                return false;
        }
        return true;
    }

    template <typename T>
    static bool decode(const json& from, std::map<std::string, T, std::less<>>& map) {
        if (!from.is_object())
            return false;
        map.clear();
        for (const auto& [name, value] : from.items()) {
            if (!decode(value, map[name]))
                return false;
        }
        return true;
    }

    template <typename T>
    static bool member(const json& from, const char* name, T& value) {
        if (!from.is_object())
            return false;
        const auto found = from.find(name);
        return found != from.end() && decode(*found, value);
    }

    static bool decodeWhole(double number, std::int64_t& value) {
        if (std::trunc(number) != number || number < -kIntegerLimit || number >= kIntegerLimit)
            return false;
        value = static_cast<std::int64_t>(number);
        return true;
    }
};

/// The JSON value of each type that occurs in the document. Numbers are finite.
struct Encoder {
    static json encode(bool value) { return value; }
    static json encode(std::int64_t value) { return value; }
    static json encode(const std::string& value) { return value; }

    static json encode(double value) {
        const bool whole = std::trunc(value) == value && std::abs(value) < kExactIntegerLimit;
        if (whole && !(value == 0 && std::signbit(value)))
            return static_cast<std::int64_t>(value);
        return value;
    }

    static json encode(const Zone& zone) {
        return {{"enabled", zone.enabled},
                {"x", encode(zone.x)},
                {"y", encode(zone.y)},
                {"w", encode(zone.w)},
                {"h", encode(zone.h)}};
    }

    static json encode(const Layout& layout) {
        return {{"name", layout.name}, {"zones", encode(layout.zones)}};
    }

    static json encode(const Binding& binding) {
        return {{"keyCode", binding.keyCode}, {"mods", binding.mods}};
    }

    template <typename T>
    static json encode(const std::vector<T>& list) {
        json array = json::array();
        for (const T& value : list)
            array.push_back(encode(value));
        return array;
    }

    template <typename T>
    static json encode(const std::map<std::string, T, std::less<>>& map) {
        json object = json::object();
        for (const auto& [name, value] : map)
            object[name] = encode(value);
        return object;
    }
};

/// Calls `visit(name, field)` for every member of the document.
template <typename Settings, typename Visit>
void forEachMember(Settings& settings, Visit visit) {
    visit("zones", settings.zones);
    visit("bindings", settings.bindings);
    visit("userLayouts", settings.userLayouts);
    visit("gap", settings.gap);
    visit("margin", settings.margin);
    visit("dragEnabled", settings.dragEnabled);
    visit("dragTrigger", settings.dragTrigger);
    visit("edgeSnap", settings.edgeSnap);
    visit("ignoredApps", settings.ignoredApps);
    visit("hasOnboarded", settings.hasOnboarded);
    visit("gridStep", settings.gridStep);
    visit("lastUpdateCheck", settings.lastUpdateCheck);
    visit("rememberApps", settings.rememberApps);
    visit("appZones", settings.appZones);
}

bool allFinite(const std::vector<Zone>& zones) {
    return std::all_of(zones.begin(), zones.end(), [](const Zone& zone) {
        return std::isfinite(zone.x) && std::isfinite(zone.y) && std::isfinite(zone.w) &&
               std::isfinite(zone.h);
    });
}

bool allFinite(const AppSettings& settings) {
    return allFinite(settings.zones) && std::isfinite(settings.gap) && std::isfinite(settings.margin) &&
           std::isfinite(settings.gridStep) && std::isfinite(settings.lastUpdateCheck) &&
           std::all_of(settings.userLayouts.begin(), settings.userLayouts.end(),
                       [](const Layout& layout) { return allFinite(layout.zones); });
}

} // namespace

std::optional<AppSettings> decodeSettings(std::string_view document) {
    const auto root = parse(document);
    if (!root || !root->is_object())
        return std::nullopt;

    AppSettings settings;
    bool valid = true;
    forEachMember(settings, [&](const char* name, auto& field) {
        const auto found = root->find(name);
        if (found != root->end() && !found->is_null())
            valid = valid && Decoder::decode(*found, field);
    });
    if (!valid)
        return std::nullopt;
    return settings;
}

std::optional<std::string> encodeSettings(const AppSettings& settings) {
    // The library would write null for a number that is not finite.
    if (!allFinite(settings))
        return std::nullopt;

    json root = json::object();
    forEachMember(settings,
                  [&](const char* name, const auto& field) { root[name] = Encoder::encode(field); });
    try {
        return root.dump();
    } catch (const json::type_error&) { // a text that is not UTF-8
        return std::nullopt;
    }
}

} // namespace tessarel
