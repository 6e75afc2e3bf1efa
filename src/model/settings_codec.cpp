#include "model/settings_codec.h"

#include "model/json_document.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

namespace tessarel {
namespace {

/// 2^63. A double without a fraction in [-limit, limit) fits into a signed 64-bit integer.
constexpr double kIntegerLimit = 9223372036854775808.0;

/// 2^53. Below it, every integer is exactly representable as a double, so writing it without a fraction loses
/// nothing.
constexpr double kExactIntegerLimit = 9007199254740992.0;

/// Decodes each type that occurs in the document. Returns false if the JSON value has another type.
///
/// Member functions instead of free ones, because they can call each other regardless of their order.
struct Decoder {
    static bool decode(const JsonValue& from, bool& value) { return copy(from.as<bool>(), value); }
    static bool decode(const JsonValue& from, std::string& value) {
        return copy(from.as<std::string>(), value);
    }

    static bool decode(const JsonValue& from, double& value) {
        if (const auto* const whole = from.as<std::int64_t>()) {
            value = static_cast<double>(*whole);
            return true;
        }
        return copy(from.as<double>(), value);
    }

    static bool decode(const JsonValue& from, std::int64_t& value) {
        if (const auto* const number = from.as<double>())
            return decodeWhole(*number, value);
        return copy(from.as<std::int64_t>(), value);
    }

    static bool decode(const JsonValue& from, Zone& zone) {
        return member(from, "enabled", zone.enabled) && member(from, "x", zone.x) &&
               member(from, "y", zone.y) && member(from, "w", zone.w) && member(from, "h", zone.h);
    }

    static bool decode(const JsonValue& from, Layout& layout) {
        return member(from, "name", layout.name) && member(from, "zones", layout.zones);
    }

    static bool decode(const JsonValue& from, Binding& binding) {
        return member(from, "keyCode", binding.keyCode) && member(from, "mods", binding.mods);
    }

    template <typename T>
    static bool decode(const JsonValue& from, std::vector<T>& list) {
        const auto* const array = from.as<JsonArray>();
        if (!array)
            return false;
        list.assign(array->size(), T());
        for (std::size_t index = 0; index < list.size(); ++index) {
            if (!decode((*array)[index], list[index]))
                return false;
        }
        return true;
    }

    template <typename T>
    static bool decode(const JsonValue& from, std::map<std::string, T, std::less<>>& map) {
        const auto* const object = from.as<JsonObject>();
        if (!object)
            return false;
        map.clear();
        for (const auto& [name, value] : *object) {
            if (!decode(value, map[name]))
                return false;
        }
        return true;
    }

    /// Decodes a required member of an object; false if it is missing.
    template <typename T>
    static bool member(const JsonValue& from, std::string_view name, T& value) {
        const JsonValue* const found = from.member(name);
        return found && decode(*found, value);
    }

    template <typename T>
    static bool copy(const T* from, T& value) {
        if (from)
            value = *from;
        return from != nullptr;
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
    static JsonValue encode(bool value) { return value; }
    static JsonValue encode(std::int64_t value) { return value; }
    static JsonValue encode(const std::string& value) { return value; }

    static JsonValue encode(double value) {
        // A whole number is written without a fraction, except -0, whose sign would be lost.
        const bool whole = std::trunc(value) == value && std::abs(value) < kExactIntegerLimit;
        if (whole && !(value == 0 && std::signbit(value)))
            return static_cast<std::int64_t>(value);
        return value;
    }

    static JsonValue encode(const Zone& zone) {
        return JsonObject{{"enabled", zone.enabled},
                          {"x", encode(zone.x)},
                          {"y", encode(zone.y)},
                          {"w", encode(zone.w)},
                          {"h", encode(zone.h)}};
    }

    static JsonValue encode(const Layout& layout) {
        return JsonObject{{"name", layout.name}, {"zones", encode(layout.zones)}};
    }

    static JsonValue encode(const Binding& binding) {
        return JsonObject{{"keyCode", binding.keyCode}, {"mods", binding.mods}};
    }

    template <typename T>
    static JsonValue encode(const std::vector<T>& list) {
        JsonArray array;
        for (const T& value : list)
            array.push_back(encode(value));
        return array;
    }

    template <typename T>
    static JsonValue encode(const std::map<std::string, T, std::less<>>& map) {
        JsonObject object;
        for (const auto& [name, value] : map)
            object.emplace(name, encode(value));
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

} // namespace

std::optional<AppSettings> decodeSettings(std::string_view document) {
    const auto root = readJson(document);
    if (!root || !root->as<JsonObject>())
        return std::nullopt;

    AppSettings settings;
    bool valid = true;
    forEachMember(settings, [&](std::string_view name, auto& field) {
        const JsonValue* const found = root->member(name);
        if (found && !found->isNull())
            valid = valid && Decoder::decode(*found, field);
    });
    if (!valid)
        return std::nullopt;
    return settings;
}

std::optional<std::string> encodeSettings(const AppSettings& settings) {
    JsonObject root;
    forEachMember(settings,
                  [&](const char* name, const auto& field) { root.emplace(name, Encoder::encode(field)); });
    return writeJson(root);
}

} // namespace tessarel
