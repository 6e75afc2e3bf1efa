// SPDX-License-Identifier: MIT

#include "snap/edge_zones.h"

#include <array>

namespace tessarel {

namespace {

/// Width of the bands along the screen edges, in the unit of the coordinates. The pointer stops one unit
/// before the right and bottom edges, so the bands there are one unit wider.
constexpr double kLeftAndTopBand = 6;
constexpr double kRightAndBottomBand = 7;
/// Length of the part of a band that belongs to a corner.
constexpr double kCornerReach = 80;

constexpr Zone kWhole{true, 0, 0, 100, 100};
constexpr Zone kLeftHalf{true, 0, 0, 50, 100};
constexpr Zone kRightHalf{true, 50, 0, 50, 100};
constexpr Zone kTopLeft{true, 0, 0, 50, 50};
constexpr Zone kTopRight{true, 50, 0, 50, 50};
constexpr Zone kBottomLeft{true, 0, 50, 50, 50};
constexpr Zone kBottomRight{true, 50, 50, 50, 50};

/// Position of the pointer along one axis of the screen.
struct Position {
    bool inFirstBand;
    bool inLastBand;
    bool nearFirstEnd;
    bool nearLastEnd;
};

/// Returns the position of `value` on an axis from `first` to `last`.
Position position(double value, double first, double last) {
    return {.inFirstBand = value <= first + kLeftAndTopBand,
            .inLastBand = value >= last - kRightAndBottomBand,
            .nearFirstEnd = value <= first + kCornerReach,
            .nearLastEnd = value >= last - kCornerReach};
}

/// The zones that one band offers: at each end, and between them.
struct Band {
    bool applies;
    const Position& along;
    Zone atFirstEnd;
    Zone atLastEnd;
    std::optional<Zone> elsewhere;
};

} // namespace

std::optional<Zone> edgeZone(const Rect& axScreen, const Point& axPoint) {
    const Position x = position(axPoint.x, axScreen.minX(), axScreen.maxX());
    const Position y = position(axPoint.y, axScreen.minY(), axScreen.maxY());
    // In order of precedence: at a corner two bands apply.
    const std::array bands{
        Band{y.inFirstBand, x, kTopLeft, kTopRight, kWhole},
        Band{y.inLastBand, x, kBottomLeft, kBottomRight, std::nullopt},
        Band{x.inFirstBand, y, kTopLeft, kBottomLeft, kLeftHalf},
        Band{x.inLastBand, y, kTopRight, kBottomRight, kRightHalf},
    };
    for (const Band& band : bands) {
        if (!band.applies)
            continue;
        if (band.along.nearFirstEnd)
            return band.atFirstEnd;
        return band.along.nearLastEnd ? std::optional(band.atLastEnd) : band.elsewhere;
    }
    return {};
}

} // namespace tessarel
