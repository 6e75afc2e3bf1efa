// SPDX-License-Identifier: MIT

#pragma once

#include "support/x11/frame.h"

#include <array>

namespace tessarel::x11test {

/// Part of an area in percent, y down.
struct Share {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;
};

/// Gap between windows and margin at the edges of the area, in pixels.
struct Spacing {
    double gap = 0;
    double margin = 0;
};

/// The zones of the default layout: three above, two below.
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

/// Returns the frame of a window in `share` of `area`: neighbours are one gap apart, the edges of the area
/// one margin away.
[[nodiscard]] Frame frameIn(const Frame& area, const Share& share, const Spacing& spacing = {});

/// Returns the frame of a window with the size of `window`, centred in `area`.
[[nodiscard]] Frame centred(const Frame& area, const Frame& window);

/// Returns the frame of a window that is at least as large as `minimum` after a request for `wanted`: moved
/// back into `area` from the right and from below.
[[nodiscard]] Frame pulledBack(const Frame& area, const Frame& wanted, const Frame& minimum);

/// Returns the frame of a window that moves from one display to another and keeps its relative position and
/// size.
[[nodiscard]] Frame carriedOver(const Frame& window, const Frame& from, const Frame& to);

} // namespace tessarel::x11test
