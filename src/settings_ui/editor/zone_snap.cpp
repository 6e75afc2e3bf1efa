// SPDX-License-Identifier: MIT

#include "settings_ui/editor/zone_snap.h"

#include "model/zone.h"

#include <array>
#include <cmath>
#include <limits>

namespace tessarel {

namespace {

// In percent of the screen.
constexpr double kReach = 1.6;
constexpr std::array<double, 7> kGuides = {0, 25, 100.0 / 3, 50, 200.0 / 3, 75, 100};

/// Finds the place nearest to a value; the first one of equally near places. Ignores NaN.
class Nearest {
public:
    explicit Nearest(double value) : m_value(value) {}

    void look(double place) {
        const double distance = std::abs(place - m_value);
        if (!(distance < m_distance))
            return;
        m_place = place;
        m_distance = distance;
    }
    [[nodiscard]] double place() const { return m_place; }
    [[nodiscard]] double distance() const { return m_distance; }

private:
    double m_value;
    double m_place = 0;
    double m_distance = std::numeric_limits<double>::infinity();
};

} // namespace

double ZoneSnap::snap(double value, Axis axis) const {
    Nearest nearest(value);
    for (const double guide : kGuides)
        nearest.look(guide);
    for (int i = 0; const Zone& zone : m_settings.zones) {
        if (i++ == m_index || !zone.enabled)
            continue;
        const double start = axis == Axis::Horizontal ? zone.x : zone.y;
        nearest.look(start);
        nearest.look(start + (axis == Axis::Horizontal ? zone.w : zone.h));
    }
    return nearest.distance() < kReach ? nearest.place() : onGrid(value);
}

double ZoneSnap::onGrid(double value) const {
    const double step = m_settings.gridStep;
    if (!(step > 0)) // 0 is off; also rejects NaN
        return value;
    const double rounded = step * std::round(value / step);
    return std::isfinite(rounded) ? rounded : value; // an extreme step may overflow
}

} // namespace tessarel
