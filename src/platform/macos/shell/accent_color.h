// SPDX-License-Identifier: MIT

#pragma once

#include <optional>

namespace tessarel::macos {

/// Colour components from 0 to 1 in the sRGB colour space.
struct Color {
    double red = 0;
    double green = 0;
    double blue = 0;

    bool operator==(const Color&) const = default;
};

/// Returns the user's accent colour as it is set now; `std::nullopt` when the system cannot convert it to
/// sRGB.
[[nodiscard]] std::optional<Color> accentColor();

} // namespace tessarel::macos
