// SPDX-License-Identifier: MIT

#include "settings_ui/editor/zone_editing.h"

#include "settings_ui/editor/zone_snap.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace tessarel {

namespace {

using Axis = ZoneSnap::Axis;

constexpr double kGrabDistance = 8; // points
constexpr double kMinimumSize = 2;  // percent

bool isNear(double edge, double pointer) {
    return std::abs(pointer - edge) <= kGrabDistance;
}

/// If both edges are near the pointer, keeps only the nearer one; the first one if they are equally near.
void keepNearer(bool& first, bool& second, double toFirst, double toSecond) {
    if (!first || !second)
        return;
    first = std::abs(toFirst) <= std::abs(toSecond);
    second = !first;
}

bool isFinite(const Zone& zone) {
    return std::isfinite(zone.x) && std::isfinite(zone.y) && std::isfinite(zone.w) && std::isfinite(zone.h);
}

/// Returns `value` rounded to two decimals, halves away from zero. A value that is too large to have decimals
/// is returned unchanged.
double rounded(double value) {
    const double hundredths = value * 100;
    return std::isfinite(hundredths) ? std::round(hundredths) / 100 : value;
}

/// Snaps an extent by its start or by its end, whichever moves it less, and returns the new start. The start
/// decides if both move it equally.
double snappedStart(const ZoneSnap& snap, double start, double size, Axis axis) {
    const double byStart = snap.snap(start, axis);
    const double byEnd = snap.snap(start + size, axis) - size;
    return std::abs(byEnd - start) < std::abs(byStart - start) ? byEnd : byStart;
}

/// Start and end of a zone along one axis, in percent.
struct Extent {
    double start;
    double end;
};

/// Limits an extent to 0 to 100 percent and to the minimum size, which takes precedence: an end that is
/// dragged beyond the start pushes it along, if necessary below 0.
Extent limited(Extent extent) {
    extent.start = std::min(std::max(extent.start, 0.0), extent.end - kMinimumSize);
    extent.end = std::max(std::min(extent.end, 100.0), extent.start + kMinimumSize);
    return extent;
}

} // namespace

Rect ZoneEditing::rect(const Zone& zone, const Size& bounds) {
    return {zone.x / 100 * bounds.width, zone.y / 100 * bounds.height, zone.w / 100 * bounds.width,
            zone.h / 100 * bounds.height};
}

std::optional<std::size_t> ZoneEditing::selectedIndex() const {
    if (selected < 0 || static_cast<std::size_t>(selected) >= m_settings.zones.size())
        return std::nullopt;
    return static_cast<std::size_t>(selected);
}

const Zone* ZoneEditing::selectedZone() const {
    const auto index = selectedIndex();
    return index && m_settings.zones[*index].enabled ? &m_settings.zones[*index] : nullptr;
}

ZoneEdges ZoneEditing::edgesAt(const Point& point, const Size& bounds) const {
    const Zone* const zone = selectedZone();
    if (!zone)
        return {};
    const Rect area = rect(*zone, bounds);
    // Edges can also be grabbed from outside of the zone.
    const bool isBeside = point.y >= area.minY() - kGrabDistance && point.y <= area.maxY() + kGrabDistance;
    const bool isAbove = point.x >= area.minX() - kGrabDistance && point.x <= area.maxX() + kGrabDistance;
    ZoneEdges edges{.left = isBeside && isNear(area.minX(), point.x),
                    .right = isBeside && isNear(area.maxX(), point.x),
                    .top = isAbove && isNear(area.minY(), point.y),
                    .bottom = isAbove && isNear(area.maxY(), point.y)};
    keepNearer(edges.left, edges.right, point.x - area.minX(), point.x - area.maxX());
    keepNearer(edges.top, edges.bottom, point.y - area.minY(), point.y - area.maxY());
    return edges;
}

std::optional<std::size_t> ZoneEditing::zoneAt(const Point& point, const Size& bounds) const {
    std::optional<std::size_t> found;
    double smallest = 0;
    for (std::size_t i = 0; i < m_settings.zones.size(); ++i) {
        const Rect area = rect(m_settings.zones[i], bounds);
        if (!m_settings.zones[i].enabled || !area.contains(point))
            continue;
        const double size = area.absWidth() * area.absHeight();
        if (found && !(size < smallest))
            continue;
        found = i;
        smallest = size;
    }
    return found;
}

ZoneEditing::Grip ZoneEditing::gripAt(const Point& point, const Size& bounds) const {
    if (const ZoneEdges edges = edgesAt(point, bounds); edges.any())
        return {Mode::Resize, edges, *selectedIndex()};
    if (const auto zone = zoneAt(point, bounds))
        return {Mode::Move, {}, *zone};
    return {};
}

bool ZoneEditing::press(const Point& point, const Size& bounds) {
    m_startPoint = point;
    m_grip = gripAt(point, bounds);
    if (m_grip.mode == Mode::None)
        return false;
    m_startZone = m_settings.zones[m_grip.zone];
    const bool isAnother = static_cast<int>(m_grip.zone) != selected;
    selected = static_cast<int>(m_grip.zone);
    return isAnother;
}

bool ZoneEditing::drag(const Point& point, const Size& bounds, Snapping snapping) {
    // Always starts from the zone at the time of the press, so that rounding and snapping do not add up.
    const auto index = selectedIndex();
    if (!index || !(bounds.width > 0) || !(bounds.height > 0) || m_grip.mode == Mode::None)
        return false;
    const double dx = (point.x - m_startPoint.x) / bounds.width * 100;
    const double dy = (point.y - m_startPoint.y) / bounds.height * 100;
    const Zone zone = m_grip.mode == Mode::Move ? moved(dx, dy, snapping) : resized(dx, dy, snapping);
    const Zone result{m_startZone.enabled, rounded(zone.x), rounded(zone.y), rounded(zone.w),
                      rounded(zone.h)};
    if (!isFinite(result))
        return false;
    m_settings.zones[*index] = result;
    return true;
}

Zone ZoneEditing::moved(double dx, double dy, Snapping snapping) const {
    Zone zone = m_startZone;
    zone.x += dx;
    zone.y += dy;
    if (snapping == Snapping::On) {
        const ZoneSnap snap(m_settings, selected);
        zone.x = snappedStart(snap, zone.x, zone.w, Axis::Horizontal);
        zone.y = snappedStart(snap, zone.y, zone.h, Axis::Vertical);
    }
    // A zone that is larger than the screen is aligned with the right or bottom edge.
    zone.x = std::min(std::max(zone.x, 0.0), 100 - zone.w);
    zone.y = std::min(std::max(zone.y, 0.0), 100 - zone.h);
    return zone;
}

Zone ZoneEditing::resized(double dx, double dy, Snapping snapping) const {
    const ZoneSnap snap(m_settings, selected);
    const auto follow = [&](bool isHeld, double& edge, double by, Axis axis) {
        if (isHeld)
            edge = snapping == Snapping::On ? snap.snap(edge + by, axis) : edge + by;
    };
    Extent across{m_startZone.x, m_startZone.x + m_startZone.w};
    Extent down{m_startZone.y, m_startZone.y + m_startZone.h};
    follow(m_grip.edges.left, across.start, dx, Axis::Horizontal);
    follow(m_grip.edges.right, across.end, dx, Axis::Horizontal);
    follow(m_grip.edges.top, down.start, dy, Axis::Vertical);
    follow(m_grip.edges.bottom, down.end, dy, Axis::Vertical);
    across = limited(across);
    down = limited(down);
    return {m_startZone.enabled, across.start, down.start, across.end - across.start, down.end - down.start};
}

bool ZoneEditing::release() {
    const bool wasHeld = m_grip.mode != Mode::None;
    m_grip = {};
    return wasHeld;
}

bool ZoneEditing::disableSelected() {
    const auto index = selectedIndex();
    if (!index)
        return false;
    m_settings.zones[*index].enabled = false;
    return true;
}

} // namespace tessarel
