// SPDX-License-Identifier: MIT

#include "engine/engine_test.h"
#include "engine/geo.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <random>
#include <vector>

namespace tessarel {
namespace {

constexpr int kCases = 100'000;

/// One axis of a zone: where it starts and how long it is.
struct Span {
    double start = 0;
    double length = 0;
};

double roundedByHand(double value) {
    const double whole = std::trunc(value);
    if (std::abs(value - whole) < 0.5)
        return whole;
    return value < 0 ? whole - 1 : whole + 1;
}

/// Returns `span` shortened by `by` at both ends, or an infinite start and the length -1 when the length
/// would become negative.
Span shrunk(Span span, double by) {
    if (span.length < 0)
        span = {span.start + span.length, -span.length};
    const double length = span.length - 2 * by;
    return length < 0 ? Span{std::numeric_limits<double>::infinity(), -1} : Span{span.start + by, length};
}

/// Returns the zone's frame, computed independently of `Geo` and axis by axis.
Rect naiveZoneFrame(const Zone& zone, const Rect& area, double gap, double margin) {
    const auto along = [&](double start, double length, double from, double extent) {
        const Span outer = shrunk({start, length}, margin - gap / 2);
        if (outer.length < 0)
            return outer;
        return shrunk({outer.start + outer.length * (from / 100), outer.length * (extent / 100)}, gap / 2);
    };
    const Span x = along(area.x, area.width, zone.x, zone.w);
    const Span y = along(area.y, area.height, zone.y, zone.h);
    if (x.length < 0 || y.length < 0) {
        const double nowhere = std::numeric_limits<double>::infinity();
        return {nowhere, nowhere, 40, 40};
    }
    const auto atLeast40 = [](double value) { return value < 40 ? 40 : value; };
    return {roundedByHand(x.start), roundedByHand(y.start), atLeast40(roundedByHand(x.length)),
            atLeast40(roundedByHand(y.length))};
}

class GeoRandomTest : public EngineTest {
protected:
    double uniform(double from, double to) { return std::uniform_real_distribution(from, to)(random); }
    int whole(int from, int to) { return std::uniform_int_distribution(from, to)(random); }
    /// Returns mostly whole numbers and halves, where rounding matters most.
    double measure(int from, int to) {
        return whole(0, 3) == 0 ? uniform(from, to) : whole(2 * from, 2 * to) * 0.5;
    }

    Zone zone() {
        if (whole(0, 3) == 0)
            return {true, uniform(-50, 150), uniform(-50, 150), uniform(-50, 150), uniform(-50, 150)};
        return {true, whole(0, 20) * 5.0, whole(0, 20) * 5.0, whole(0, 3) * 100.0 / 3, whole(0, 20) * 5.0};
    }

    std::mt19937 random{20240611};
};

TEST_F(GeoRandomTest, ZoneFramesAgreeWithASecondCalculation) {
    for (int i = 0; i < kCases; ++i) {
        settings.gap = measure(0, 60);
        settings.margin = measure(0, 60);
        const Rect area{measure(-2000, 2000), measure(-2000, 2000), measure(0, 3000), measure(0, 2000)};
        const Zone wanted = zone();

        ASSERT_EQ(geo.zoneFrame(wanted, area), naiveZoneFrame(wanted, area, settings.gap, settings.margin))
            << "case " << i << ", gap " << settings.gap << ", margin " << settings.margin;
    }
}

/// Returns the length that two intervals have in common.
double common(double a, double aEnd, double b, double bEnd) {
    return std::max(0.0, std::min(aEnd, bEnd) - std::max(a, b));
}

/// Returns the index of the display that shows most of the window, computed independently of `Geo`.
std::size_t naiveScreen(const std::vector<Screen>& screens, const Rect& window) {
    std::size_t best = 0;
    double bestShown = 0;
    for (std::size_t n = 0; n < screens.size(); ++n) {
        const Rect& frame = screens[n].frame;
        const double top = screens[0].frame.height - (frame.y + frame.height);
        const double shown = common(frame.x, frame.x + frame.width, window.x, window.x + window.width) *
                             common(top, top + frame.height, window.y, window.y + window.height);
        if (shown > bestShown) {
            best = n;
            bestShown = shown;
        }
    }
    return best;
}

TEST_F(GeoRandomTest, TheScreenOfAWindowAgreesWithASecondCalculation) {
    constexpr int kWindowsPerDesktop = 50;
    int notTheFirst = 0;
    for (int i = 0; i < kCases / kWindowsPerDesktop; ++i) {
        sim::SimDesktop other;
        Geo otherGeo{other.displays(), store};
        std::vector<Screen> screens{
            other.addScreen({.frame = {0, 0, whole(3, 20) * 100.0, whole(3, 10) * 100.0}})};
        for (int n = whole(0, 3); n > 0; --n) {
            screens.push_back(other.addScreen({.frame = {whole(-20, 20) * 100.0, whole(-15, 15) * 100.0,
                                                         whole(1, 20) * 100.0, whole(1, 15) * 100.0}}));
        }
        for (int n = 0; n < kWindowsPerDesktop; ++n) {
            const Rect window{whole(-25, 25) * 50.0, whole(-25, 25) * 50.0, whole(0, 15) * 50.0,
                              whole(0, 15) * 50.0};
            const std::size_t expected = naiveScreen(screens, window);
            notTheFirst += expected > 0 ? 1 : 0;
            ASSERT_EQ(otherGeo.screen(window), screens[expected]) << "desktop " << i << ", window " << n;
        }
    }
    EXPECT_GT(notTheFirst, kCases / 100);
}

} // namespace
} // namespace tessarel
