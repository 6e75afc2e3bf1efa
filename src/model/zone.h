#pragma once

#include <cstddef>

namespace tessarel {

/// Number of zones in the active set: one per zone action and its hot key.
inline constexpr std::size_t kZoneSlots = 9;

/// One rectangle on a screen, in percent of the screen's usable area.
///
/// `x` and `y` are the left and the top edge, measured from the left and from the top; the whole area is
/// (0, 0, 100, 100). Nothing here clamps or validates the values. Equality is exact, without tolerance.
struct Zone {
    /// Whether the zone takes part: hot key, drag targets, arrange all, menu.
    bool enabled = false;
    double x = 0;
    double y = 0;
    double w = 0;
    double h = 0;

    bool operator==(const Zone&) const = default;
};

} // namespace tessarel
