#pragma once

#include <string>
#include <vector>

namespace tessarel::xdg {

/// Returns the user's languages, the preferred one first, spelled as in desktop entries: "de_AT@euro",
/// "de_AT", "de@euro", "de". A language may occur twice. Empty if the environment asks for untranslated
/// texts.
[[nodiscard]] std::vector<std::string> userLanguages();

} // namespace tessarel::xdg
