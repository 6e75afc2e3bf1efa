#include "app/update_feed.h"

#include "model/json_document.h"

namespace tessarel {
namespace {

/// Returns the member if it is a string.
std::optional<std::string> text(const JsonValue& object, std::string_view name) {
    const JsonValue* const member = object.member(name);
    const auto* const value = member ? member->as<std::string>() : nullptr;
    return value ? std::optional(*value) : std::nullopt;
}

} // namespace

std::optional<UpdateFeed> decodeUpdateFeed(std::string_view document) {
    const auto root = readJson(document);
    if (!root)
        return std::nullopt;
    const auto version = text(*root, "version");
    if (!version)
        return std::nullopt;
    return UpdateFeed{*version, text(*root, "notes").value_or(""), text(*root, "url")};
}

} // namespace tessarel
