// SPDX-License-Identifier: MIT

#pragma once

#include "model/settings/app_settings.h"

#include <optional>
#include <string>
#include <string_view>

namespace tessarel {

/// Decodes the settings from a JSON object.
///
/// A member that is missing or null gets its default; an unknown member is ignored. Any other member replaces
/// the default entirely, and all its parts must be present and have the right type. A number without a
/// fraction counts as an integer, however it is written. Returns `std::nullopt` for any other document. Zones
/// are returned as they are, in any number.
[[nodiscard]] std::optional<AppSettings> decodeSettings(std::string_view document);

/// Returns the document for `settings`, with every member, or `std::nullopt` if a number is not finite or a
/// text is not UTF-8. Unknown members of the document `former` are kept.
[[nodiscard]] std::optional<std::string> encodeSettings(const AppSettings& settings,
                                                        std::string_view former = {});

} // namespace tessarel
