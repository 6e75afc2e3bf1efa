// SPDX-License-Identifier: MIT

#include "app/updates/update_feed.h"

#include "model/json.h"

namespace tessarel {
namespace {

/// Returns the member if it is a string.
std::optional<std::string> text(const Json& object, std::string_view name) {
    const auto member = object.find(name);
    if (member == object.end() || !member->is_string())
        return std::nullopt;
    return member->get<std::string>();
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
