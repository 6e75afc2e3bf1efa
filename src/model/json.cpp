#include "model/json.h"

#include <algorithm>
#include <cmath>

namespace tessarel {
namespace {

/// Returns whether all numbers in `value` are finite. The library would write null for any other number.
bool isFinite(const Json& value) {
    if (value.is_structured())
        return std::ranges::all_of(value, isFinite);
    return !value.is_number_float() || std::isfinite(value.get<double>());
}

} // namespace

std::optional<Json> readJson(std::string_view document) {
    Json root = Json::parse(document, nullptr, false);
    if (root.is_discarded())
        return std::nullopt;
    return root;
}

std::optional<std::string> writeJson(const Json& value) {
    if (!isFinite(value))
        return std::nullopt;
    try {
        return value.dump();
    } catch (const Json::type_error&) { // thrown for text that is not UTF-8
        return std::nullopt;
    }
}

} // namespace tessarel
