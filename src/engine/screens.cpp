// SPDX-License-Identifier: MIT

#include "engine/screens.h"

#include <algorithm>
#include <utility>

namespace tessarel {

namespace {

/// Returns 0 for the null rectangle.
double area(const Rect& rect) {
    return rect.absWidth() * rect.absHeight();
}

} // namespace

Screens::Screens(std::vector<Screen> all) : m_all(std::move(all)) {}

double Screens::primaryHeight() const {
    return m_all.empty() ? 0 : m_all.front().frame.absHeight();
}

Rect Screens::flip(const Rect& rect) const {
    return {rect.minX(), primaryHeight() - rect.maxY(), rect.absWidth(), rect.absHeight()};
}

Point Screens::axPoint(const Point& screenPoint) const {
    return {screenPoint.x, primaryHeight() - screenPoint.y};
}

const Screen* Screens::containing(const Rect& axFrame) const {
    const Screen* best = nullptr;
    // Less than any area, so that the first screen wins if none shows the window.
    double bestArea = -1;
    for (const Screen& candidate : m_all) {
        const double shown = area(flip(candidate.frame).intersection(axFrame));
        if (bestArea < shown) {
            best = &candidate;
            bestArea = shown;
        }
    }
    return best;
}

const Screen* Screens::showing(const Point& screenPoint) const {
    const auto found = std::ranges::find_if(m_all, [&](const Screen& screen) {
        const Rect& frame = screen.frame;
        return screenPoint.x >= frame.minX() && screenPoint.x < frame.maxX() &&
               screenPoint.y > frame.minY() && screenPoint.y <= frame.maxY();
    });
    return found == m_all.end() ? nullptr : &*found;
}

} // namespace tessarel
