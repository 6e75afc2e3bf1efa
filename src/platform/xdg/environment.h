// SPDX-License-Identifier: MIT

#pragma once

#include <string>
#include <vector>

namespace tessarel::xdg {

/// Returns the parts of the value of an environment variable between colons; empty if it is unset.
[[nodiscard]] std::vector<std::string> listFrom(const char* variable);

/// Returns the names of the desktop that the user is logged in to ($XDG_CURRENT_DESKTOP), the most specific
/// first.
[[nodiscard]] std::vector<std::string> currentDesktops();

} // namespace tessarel::xdg
