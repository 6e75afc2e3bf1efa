#pragma once

#include "model/app_settings.h"

#include <optional>
#include <string>
#include <string_view>

namespace tessarel {

/// The settings in a document, a JSON object.
///
/// A member that is missing or null takes its default and an unknown one is ignored. A present one replaces
/// the default entirely and must have the right type in all its parts; a number without a fraction is an
/// integer however it is written. Anything else is no document: none. Zones are answered as they stand,
/// however many they are.
[[nodiscard]] std::optional<AppSettings> decodeSettings(std::string_view document);

/// The document for `settings`, with every member; none if a number is not finite or a text is not UTF-8.
[[nodiscard]] std::optional<std::string> encodeSettings(const AppSettings& settings);

} // namespace tessarel
