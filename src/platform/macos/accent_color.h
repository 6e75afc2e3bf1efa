#pragma once

#include <optional>

namespace tessarel::macos {

/// Parts from 0 to 1, in the common colour space (sRGB).
struct Color {
    double red = 0;
    double green = 0;
    double blue = 0;

    bool operator==(const Color&) const = default;
};

/// The colour that the user has chosen for what stands out, as it is now; none when it cannot be expressed.
[[nodiscard]] std::optional<Color> accentColor();

} // namespace tessarel::macos
