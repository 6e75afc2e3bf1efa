// SPDX-License-Identifier: MIT

#include "engine/geo.h"

#include <algorithm>
#include <cmath>

namespace tessarel {

Geo::Geo(DisplaysPort& displays, const Store& store) : m_displays(displays), m_store(store) {}

Screens Geo::screens() const {
    return Screens(m_displays.screens());
}

double Geo::primaryHeight() const {
    return screens().primaryHeight();
}

Rect Geo::flip(const Rect& rect) const {
    return screens().flip(rect);
}

Rect Geo::axFrame(const Screen& screen) const {
    return screens().axFrame(screen);
}

Rect Geo::axVisible(const Screen& screen) const {
    return screens().axVisible(screen);
}

Point Geo::axPoint(const Point& screenPoint) const {
    return screens().axPoint(screenPoint);
}

std::optional<Screen> Geo::screen(const Rect& containing) const {
    const Screens all = screens();
    const Screen* const best = all.containing(containing);
    return best ? std::optional(*best) : m_displays.mainScreen();
}

Rect Geo::zoneFrame(const Zone& zone, const Rect& axArea) const {
    const double half = m_store.settings.gap * 0.5;
    // Less than the margin, because every edge of a zone is inset by half the gap below.
    const double edge = m_store.settings.margin - half;
    const Rect outer = axArea.inset(edge, edge);
    const Rect share{outer.minX() + outer.absWidth() * (zone.x / 100),
                     outer.minY() + outer.absHeight() * (zone.y / 100), outer.absWidth() * (zone.w / 100),
                     outer.absHeight() * (zone.h / 100)};
    const Rect inner = share.inset(half, half);
    return {std::round(inner.minX()), std::round(inner.minY()),
            std::max(std::round(inner.absWidth()), kMinimumExtent),
            std::max(std::round(inner.absHeight()), kMinimumExtent)};
}

} // namespace tessarel
