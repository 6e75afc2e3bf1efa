// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>

namespace tessarel {

/// Number of active zones: one per zone action and its hot key.
inline constexpr std::size_t kZoneSlots = 9;

/// A rectangle on a screen, in percent of the screen's usable area.
///
/// `x` and `y` are measured from the left and top edges; the whole area is (0, 0, 100, 100). Values are
/// neither clamped nor validated. Comparison is exact, without tolerance.
struct Zone {
    /// Whether the zone takes part in anything: hot key, drag, arrange all, menu.
    bool enabled = false;
    double x = 0;
    double y = 0;
    double w = 0;
    double h = 0;

    bool operator==(const Zone&) const = default;
};

} // namespace tessarel
