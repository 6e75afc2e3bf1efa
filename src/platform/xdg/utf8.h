// SPDX-License-Identifier: MIT

#pragma once

#include <string>

namespace tessarel::xdg {

/// Returns `text` up to its first NUL as valid UTF-8. Text that is not valid UTF-8 is taken for Latin-1, as
/// older clients write it.
[[nodiscard]] std::string toUtf8(const std::string& text);

} // namespace tessarel::xdg
