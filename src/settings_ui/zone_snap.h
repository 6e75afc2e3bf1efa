#pragma once

#include "model/app_settings.h"

#include <cstdint>

namespace tessarel {

/// Draws the edges of one zone to where edges like to be.
class ZoneSnap {
public:
    enum class Axis : std::uint8_t { Horizontal, Vertical };

    /// For the zone at position `index` of the settings, which does not attract itself. `settings` must
    /// outlive the snap.
    ZoneSnap(const AppSettings& settings, int index) : m_settings(settings), m_index(index) {}

    /// `value` drawn to the nearest guide or edge of another enabled zone that is closer than 1.6 percent, a
    /// guide before an edge and an earlier zone before a later one; else rounded to the grid, halves away
    /// from zero; without a grid, as it is.
    [[nodiscard]] double snap(double value, Axis axis) const;

private:
    [[nodiscard]] double onGrid(double value) const;

    const AppSettings& m_settings;
    int m_index;
};

} // namespace tessarel
