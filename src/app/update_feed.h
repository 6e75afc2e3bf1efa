#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tessarel {

/// What the maker's website says about the newest version.
struct UpdateFeed {
    std::string version;            ///< dotted numbers, or whatever stands there
    std::string notes;              ///< for the user; may be empty
    std::optional<std::string> url; ///< of the download page, as it stands there

    bool operator==(const UpdateFeed&) const = default;
};

/// The feed in a document, a JSON object with the text "version". "notes" and "url" count as missing when
/// they are no texts; other members are ignored. Anything else is no feed: none.
[[nodiscard]] std::optional<UpdateFeed> decodeUpdateFeed(std::string_view document);

} // namespace tessarel
