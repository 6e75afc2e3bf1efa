// SPDX-License-Identifier: MIT

#pragma once

#include "model/settings/app_settings.h"

#include <cstdint>

namespace tessarel {

/// Snaps the edges of one zone to guides, to edges of other zones and to the grid.
class ZoneSnap {
public:
    /// The axis of a coordinate: `Horizontal` for x, `Vertical` for y.
    enum class Axis : std::uint8_t { Horizontal, Vertical };

    /// `index` is the position of the zone that is edited, whose own edges are ignored. `settings` must
    /// outlive this object.
    ZoneSnap(const AppSettings& settings, int index) : m_settings(settings), m_index(index) {}

    /// Snaps the coordinate `value` of an edge, in percent. Returns the nearest guide or edge of another
    /// enabled zone that is less than 1.6 percent away; of equally near ones, guides and earlier zones take
    /// precedence. Otherwise returns `value` rounded to the grid, halves away from zero, or unchanged if the
    /// grid is off.
    [[nodiscard]] double snap(double value, Axis axis) const;

private:
    /// Returns `value` rounded to the grid, or unchanged if the grid is off.
    [[nodiscard]] double onGrid(double value) const;

    const AppSettings& m_settings;
    int m_index;
};

} // namespace tessarel
