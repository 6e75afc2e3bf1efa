#include "snap/edge_zones.h"

#include <array>

namespace tessarel {

namespace {

constexpr double kLeftAndTopBand = 6;
constexpr double kRightAndBottomBand = 7;
constexpr double kCornerReach = 80;

constexpr Zone kWhole{true, 0, 0, 100, 100};
constexpr Zone kLeftHalf{true, 0, 0, 50, 100};
constexpr Zone kRightHalf{true, 50, 0, 50, 100};
constexpr Zone kTopLeft{true, 0, 0, 50, 50};
constexpr Zone kTopRight{true, 50, 0, 50, 50};
constexpr Zone kBottomLeft{true, 0, 50, 50, 50};
constexpr Zone kBottomRight{true, 50, 50, 50, 50};

/// Where a pointer is along one axis of the screen, each end of which has a band and a corner.
struct Position {
    bool inFirstBand;
    bool inLastBand;
    bool nearFirstEnd;
    bool nearLastEnd;
};

Position position(double value, double first, double last) {
    return {.inFirstBand = value <= first + kLeftAndTopBand,
            .inLastBand = value >= last - kRightAndBottomBand,
            .nearFirstEnd = value <= first + kCornerReach,
            .nearLastEnd = value >= last - kCornerReach};
}

/// What the parts of one band offer.
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
