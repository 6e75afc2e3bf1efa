// SPDX-License-Identifier: MIT

#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tessarel {

/// The content of the version feed on the product's website.
struct UpdateFeed {
    /// Expected to be numbers separated by dots, but not checked.
    std::string version;
    /// Text for the user; may be empty.
    std::string notes;
    /// Address of the download page, not checked.
    std::optional<std::string> url;

    bool operator==(const UpdateFeed&) const = default;
};

/// Decodes the feed from a JSON object that has at least the string "version". The members "notes" and "url"
/// are ignored unless they are strings; other members are ignored, too. Returns `std::nullopt` for any other
/// document.
[[nodiscard]] std::optional<UpdateFeed> decodeUpdateFeed(std::string_view document);

} // namespace tessarel
