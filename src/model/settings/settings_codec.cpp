// SPDX-License-Identifier: MIT

#include "model/settings/settings_codec.h"

#include "model/json.h"
#include "model/settings/settings_members.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <map>
#include <utility>
#include <vector>

namespace tessarel {
namespace {

/// 2^63. A double without a fraction in [-limit, limit) fits into a signed 64-bit integer.
constexpr double kIntegerLimit = 9223372036854775808.0;

/// Larger integers do not fit into a setting.
constexpr std::uint64_t kLargestInteger = std::numeric_limits<std::int64_t>::max();

/// 2^53. Below it, every integer is exactly representable as a double, so writing it without a fraction loses
/// nothing.
constexpr double kExactIntegerLimit = 9007199254740992.0;

/// Decodes each type that occurs in the document. Returns false if the JSON value has another type.
///
/// Member functions instead of free ones, because they can call each other regardless of their order.
struct Decoder {
    static bool decode(const Json& from, bool& value) { return from.is_boolean() && copy(from, value); }
    static bool decode(const Json& from, std::string& value) { return from.is_string() && copy(from, value); }
    static bool decode(const Json& from, double& value) { return from.is_number() && copy(from, value); }

    static bool decode(const Json& from, std::int64_t& value) {
        if (from.is_number_unsigned() && from.get<std::uint64_t>() > kLargestInteger)
            return false;
        if (from.is_number_integer())
            return copy(from, value);
        return from.is_number() && decodeWhole(from.get<double>(), value);
    }

    static bool decode(const Json& from, Zone& zone) {
        return member(from, "enabled", zone.enabled) && member(from, "x", zone.x) &&
               member(from, "y", zone.y) && member(from, "w", zone.w) && member(from, "h", zone.h);
    }

    static bool decode(const Json& from, Layout& layout) {
        return member(from, "name", layout.name) && member(from, "zones", layout.zones);
    }

    static bool decode(const Json& from, Binding& binding) {
        return member(from, "keyCode", binding.keyCode) && member(from, "mods", binding.mods);
    }

    template <typename T>
    static bool decode(const Json& from, std::vector<T>& list) {
        list.clear();
        return from.is_array() && std::ranges::all_of(from, [&](const Json& item) {
                   T& value = list.emplace_back();
                   return decode(item, value);
               });
    }

    template <typename T>
    static bool decode(const Json& from, std::map<std::string, T, std::less<>>& map) {
        map.clear();
        if (!from.is_object())
            return false;
        for (const auto& [name, value] : from.items()) {
            if (!decode(value, map[name]))
                return false;
        }
        return true;
    }

    /// Decodes a required member of an object; false if it is missing.
    template <typename T>
    static bool member(const Json& from, std::string_view name, T& value) {
        const auto found = from.find(name);
        return found != from.end() && decode(*found, value);
    }

    template <typename T>
    static bool copy(const Json& from, T& value) {
        from.get_to(value);
        return true;
    }

    static bool decodeWhole(double number, std::int64_t& value) {
        if (std::trunc(number) != number || number < -kIntegerLimit || number >= kIntegerLimit)
            return false;
        value = static_cast<std::int64_t>(number);
        return true;
    }
};

/// Encodes each type that occurs in the document.
struct Encoder {
    static Json encode(bool value) { return value; }
    static Json encode(std::int64_t value) { return value; }
    static Json encode(const std::string& value) { return value; }

    static Json encode(double value) {
        // A whole number is written without a fraction, and -0 as 0.
        if (std::trunc(value) == value && std::abs(value) < kExactIntegerLimit)
            return static_cast<std::int64_t>(value);
        return value;
    }

    static Json encode(const Zone& zone) {
        return {{"enabled", zone.enabled},
                {"x", encode(zone.x)},
                {"y", encode(zone.y)},
                {"w", encode(zone.w)},
                {"h", encode(zone.h)}};
    }

    static Json encode(const Layout& layout) {
        return {{"name", layout.name}, {"zones", encode(layout.zones)}};
    }

    static Json encode(const Binding& binding) {
        return {{"keyCode", binding.keyCode}, {"mods", binding.mods}};
    }

    template <typename T>
    static Json encode(const std::vector<T>& list) {
        Json array = Json::array();
        for (const T& value : list)
            array.push_back(encode(value));
        return array;
    }

    template <typename T>
    static Json encode(const std::map<std::string, T, std::less<>>& map) {
        Json object = Json::object();
        for (const auto& [name, value] : map)
            object[name] = encode(value);
        return object;
    }
};

} // namespace

std::optional<AppSettings> decodeSettings(std::string_view document) {
    const auto root = readJson(document);
    if (!root || !root->is_object())
        return std::nullopt;

    AppSettings settings;
    bool valid = true;
    forEachSetting([&](std::string_view name, auto member) {
        const auto found = root->find(name);
        if (found != root->end() && !found->is_null())
            valid = valid && Decoder::decode(*found, settings.*member);
    });
    if (!valid)
        return std::nullopt;
    return settings;
}

std::optional<std::string> encodeSettings(const AppSettings& settings, std::string_view former) {
    JsonMembers members = readJsonMembers(former).value_or(JsonMembers());
    bool valid = true;
    forEachSetting([&](const char* name, auto member) {
        auto text = writeJson(Encoder::encode(settings.*member));
        valid = valid && text;
        members[name] = std::move(text).value_or("");
    });
    return valid ? writeJsonMembers(members) : std::nullopt;
}

} // namespace tessarel
