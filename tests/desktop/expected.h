#pragma once

#include "support/x11/frame.h"

#include <array>

namespace tessarel::x11test {

/// Share of an area in percent, y from the top.
struct Share {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;
};

/// Space between windows and at the edges of the area, in pixels.
struct Spacing {
    double gap = 0;
    double margin = 0;
};

/// The zones that the program comes with: three above, two below.
inline constexpr std::array<Share, 5> kZones = {{
    {0, 0, 100.0 / 3, 50},
    {100.0 / 3, 0, 100.0 / 3, 50},
    {200.0 / 3, 0, 100.0 / 3, 50},
    {0, 50, 50, 50},
    {50, 50, 50, 50},
}};
inline constexpr Share kLeftHalf{0, 0, 50, 100};
inline constexpr Share kRightHalf{50, 0, 50, 100};
inline constexpr Share kTopHalf{0, 0, 100, 50};
inline constexpr Share kBottomHalf{0, 50, 100, 50};
inline constexpr Share kWhole{0, 0, 100, 100};

/// Where a window belongs that is put into `share` of `area`: neighbours one gap apart, one margin from the
/// edges of the area.
[[nodiscard]] Frame frameIn(const Frame& area, const Share& share, const Spacing& spacing = {});

/// Where a window of the size of `window` belongs that is centred in `area`.
[[nodiscard]] Frame centred(const Frame& area, const Frame& window);

/// Where a window ends up that keeps at least `minimum` when `wanted` is asked for: pulled back into `area`
/// from the right and from below.
[[nodiscard]] Frame pulledBack(const Frame& area, const Frame& wanted, const Frame& minimum);

/// Where a window belongs that keeps its relative place and size on its way between two displays.
[[nodiscard]] Frame carriedOver(const Frame& window, const Frame& from, const Frame& to);

} // namespace tessarel::x11test
