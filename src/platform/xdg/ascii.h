// SPDX-License-Identifier: MIT

#pragma once

#include <algorithm>
#include <string>
#include <string_view>

namespace tessarel::xdg {

/// Returns `text` with the letters A to Z in lower case, whatever the locale.
[[nodiscard]] inline std::string lowered(std::string_view text) {
    std::string result(text);
    std::ranges::transform(result, result.begin(), [](char character) {
        const bool isUpper = character >= 'A' && character <= 'Z';
        return isUpper ? static_cast<char>(character - 'A' + 'a') : character;
    });
    return result;
}

} // namespace tessarel::xdg
