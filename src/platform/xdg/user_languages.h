#pragma once

#include <string>
#include <vector>

namespace tessarel::xdg {

/// The languages that the user wants texts in, the most wanted first, spelled like those of desktop entries:
/// "de_AT@euro", "de_AT", "de@euro", "de". None when the environment asks for texts as they stand.
[[nodiscard]] std::vector<std::string> userLanguages();

} // namespace tessarel::xdg
