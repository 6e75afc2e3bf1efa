#include "engine/geo.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace tessarel {

namespace {

double heightOfPrimary(const std::vector<Screen>& screens) {
    return screens.empty() ? 0 : screens.front().frame.absHeight();
}

Rect flipped(const Rect& rect, double primaryHeight) {
    return {rect.minX(), primaryHeight - rect.maxY(), rect.absWidth(), rect.absHeight()};
}

/// Returns 0 for the null rectangle.
double area(const Rect& rect) {
    return rect.absWidth() * rect.absHeight();
}

} // namespace

Geo::Geo(DisplaysPort& displays, const Store& store) : m_displays(displays), m_store(store) {}

double Geo::primaryHeight() const {
    return heightOfPrimary(m_displays.screens());
}

Rect Geo::flip(const Rect& rect) const {
    return flipped(rect, primaryHeight());
}

Rect Geo::axFrame(const Screen& screen) const {
    return flip(screen.frame);
}

Rect Geo::axVisible(const Screen& screen) const {
    return flip(screen.visibleFrame);
}

Point Geo::axPoint(const Point& screenPoint) const {
    return {screenPoint.x, primaryHeight() - screenPoint.y};
}

std::optional<Screen> Geo::screen(const Rect& containing) const {
    const std::vector<Screen> screens = m_displays.screens();
    const double height = heightOfPrimary(screens);
    const Screen* best = nullptr;
    // Less than any area, so that the first screen wins if none shows the window.
    double bestArea = -1;
    for (const Screen& candidate : screens) {
        const double shown = area(flipped(candidate.frame, height).intersection(containing));
        if (bestArea < shown) {
            best = &candidate;
            bestArea = shown;
        }
    }
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
