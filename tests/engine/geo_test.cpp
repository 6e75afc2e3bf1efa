// SPDX-License-Identifier: MIT

#include "engine/geo.h"

#include "engine/engine_test.h"

#include <cmath>
#include <limits>

namespace tessarel {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

class GeoTest : public EngineTest {
protected:
    static constexpr Rect kArea{0, 25, 1440, 875};

    void setSpacing(double gap, double margin) {
        settings.gap = gap;
        settings.margin = margin;
    }
};

TEST_F(GeoTest, ThePrimaryHeightIsTheHeightOfTheFirstDisplay) {
    addScreens();

    EXPECT_EQ(geo.primaryHeight(), 800);
}

TEST_F(GeoTest, WithoutDisplaysThePrimaryHeightIsZero) {
    EXPECT_EQ(geo.primaryHeight(), 0);
}

TEST_F(GeoTest, ThePrimaryDisplayFlippedStartsAtTheOrigin) {
    const Screen primary = addPrimary();

    EXPECT_EQ(geo.flip(primary.frame), kPrimary);
    EXPECT_EQ(geo.axFrame(primary), kPrimary);
}

TEST_F(GeoTest, TheVisibleAreaLiesBetweenTheBars) {
    EXPECT_EQ(geo.axVisible(addPrimary()), kPrimaryUsable);
    const Screen above =
        desktop.addScreen({.frame = {-200, 800, 1000, 700}, .menuBar = 20, .dock = 70, .leftBar = 5});

    EXPECT_EQ(geo.axFrame(above), (Rect{-200, -700, 1000, 700}));
    EXPECT_EQ(geo.axVisible(above), (Rect{-195, -680, 995, 610}));
}

TEST_F(GeoTest, ADisplayAboveThePrimaryOneHasANegativeTop) {
    addPrimary();
    const Screen above = desktop.addScreen({.frame = {200, 900, 1280, 720}});

    EXPECT_EQ(geo.axFrame(above), (Rect{200, -820, 1280, 720}));
}

TEST_F(GeoTest, FlippingTwiceGivesTheRectangleBack) {
    addPrimary();
    const Rect rect{-30, 125.5, 200, 77.25};

    EXPECT_EQ(geo.flip(geo.flip(rect)), rect);
}

TEST_F(GeoTest, FlippingNormalizesNegativeSizes) {
    addPrimary();

    EXPECT_EQ(geo.flip({300, 400, -100, -50}), (Rect{200, 400, 100, 50}));
}

TEST_F(GeoTest, AChangeOfDisplaysTakesEffectAtOnce) {
    addPrimary();
    const Screen other = desktop.addScreen({.frame = {1440, 0, 1920, 1080}});
    EXPECT_EQ(geo.flip({0, 0, 10, 10}), (Rect{0, 790, 10, 10}));

    desktop.makePrimary(other.id);

    EXPECT_EQ(geo.flip({0, 0, 10, 10}), (Rect{0, 1070, 10, 10}));
}

TEST_F(GeoTest, AxPointIsMeasuredFromTheTop) {
    addPrimary();

    EXPECT_EQ(geo.axPoint({100, 250}), (Point{100, 550}));
    EXPECT_EQ(geo.axPoint({-20, 1000}), (Point{-20, -200}));
}

TEST_F(GeoTest, WithoutDisplaysAxPointNegatesY) {
    EXPECT_EQ(geo.axPoint({100, 250}), (Point{100, -250}));
}

TEST_F(GeoTest, AWindowBelongsToTheScreenThatShowsMostOfIt) {
    const Screen left = addScreens();
    const Screen primary = desktop.displays().screens().front();

    EXPECT_EQ(geo.screen({-210, 0, 400, 300}), left);
    EXPECT_EQ(geo.screen({-190, 0, 400, 300}), primary);
    EXPECT_EQ(geo.screen({-250, 0, 400, 500}), primary) << "250 by 300 against 150 by 500";
}

TEST_F(GeoTest, OfScreensThatShowEqualSharesTheFirstWins) {
    const Screen left = addScreens();
    const Screen primary = desktop.displays().screens().front();

    EXPECT_EQ(geo.screen({-200, 0, 400, 300}), primary);

    desktop.makePrimary(left.id);
    EXPECT_EQ(geo.screen({1240, 600, 400, 300})->id, left.id);
}

TEST_F(GeoTest, AWindowWhollyOffScreenBelongsToTheFirstScreenNotTheMainOne) {
    desktop.setMainScreen(addScreens());
    const Screen first = desktop.displays().screens().front();

    EXPECT_EQ(geo.screen({-5000, -5000, 100, 100}), first);
    EXPECT_EQ(geo.screen(Rect::null()), first);
}

TEST_F(GeoTest, WithoutDisplaysAWindowBelongsToTheMainScreen) {
    EXPECT_FALSE(geo.screen({100, 100, 400, 300}));

    const Screen main{7, {0, 0, 800, 600}, {0, 0, 800, 600}};
    desktop.setMainScreen(main);

    EXPECT_EQ(geo.screen({100, 100, 400, 300}), main);
}

TEST_F(GeoTest, NeighboursAreOneGapApartAndOneMarginFromTheEdge) {
    setSpacing(10, 8);

    EXPECT_EQ(geo.zoneFrame(kLeftHalf, kArea), (Rect{8, 33, 707, 859}));
    EXPECT_EQ(geo.zoneFrame(kRightHalf, kArea), (Rect{725, 33, 707, 859}));
}

TEST_F(GeoTest, WithoutGapAndMarginAZoneIsItsRoundedShareOfTheArea) {
    EXPECT_EQ(geo.zoneFrame({true, 0, 0, 50, 100}, kArea), (Rect{0, 25, 720, 875}));
    EXPECT_EQ(geo.zoneFrame({true, 0, 50, 50, 50}, kArea), (Rect{0, 463, 720, 438}));
    EXPECT_EQ(geo.zoneFrame({true, 100.0 / 3, 0, 100.0 / 3, 50}, {0, 0, 1000, 801}),
              (Rect{333, 0, 333, 401}));
}

TEST_F(GeoTest, HalvesAreRoundedAwayFromZero) {
    EXPECT_EQ(geo.zoneFrame(kWhole, {2.5, -2.5, 100.5, 99.5}), (Rect{3, -3, 101, 100}));
    EXPECT_EQ(geo.zoneFrame(kWhole, {-2.5, 2.5, 99.5, 100.5}), (Rect{-3, 3, 100, 101}));
}

TEST_F(GeoTest, AMarginSmallerThanHalfTheGapEnlargesTheArea) {
    setSpacing(20, 4);

    // Outer zones still keep the margin.
    EXPECT_EQ(geo.zoneFrame(kWhole, {0, 0, 1000, 800}), (Rect{4, 4, 992, 792}));
    EXPECT_EQ(geo.zoneFrame(kRightHalf, {0, 0, 1000, 800}), (Rect{510, 4, 486, 792}));
}

TEST_F(GeoTest, ASmallZoneHasTheMinimumExtentAtItsOwnOrigin) {
    EXPECT_EQ(geo.zoneFrame({true, 99, 99, 1, 1}, {0, 0, 1000, 800}), (Rect{990, 792, 40, 40}));
    EXPECT_EQ(geo.zoneFrame({true, 10, 10, 3, 50}, {0, 0, 1000, 800}), (Rect{100, 80, 40, 400}));
}

TEST_F(GeoTest, AGapLargerThanTheZoneGivesAnInfiniteOrigin) {
    setSpacing(200, 0);

    EXPECT_EQ(geo.zoneFrame({true, 0, 0, 10, 10}, {0, 0, 1000, 800}), (Rect{kInfinity, kInfinity, 40, 40}));
}

TEST_F(GeoTest, MarginsLargerThanTheAreaGiveAnInfiniteOrigin) {
    setSpacing(0, 600);

    const Rect frame = geo.zoneFrame(kWhole, {0, 0, 1000, 800});

    EXPECT_EQ(frame, (Rect{kInfinity, kInfinity, 40, 40}));
}

TEST_F(GeoTest, AZoneExactlyAsLargeAsTheGapHasAFiniteOrigin) {
    setSpacing(100, 50);

    EXPECT_EQ(geo.zoneFrame({true, 0, 0, 10, 50}, {0, 0, 1000, 800}), (Rect{50, 50, 40, 300}));
}

TEST_F(GeoTest, WhetherAZoneIsEnabledDoesNotMatter) {
    EXPECT_EQ(geo.zoneFrame({false, 50, 0, 50, 100}, kArea), geo.zoneFrame({true, 50, 0, 50, 100}, kArea));
}

TEST_F(GeoTest, SettingsAreReadAtEveryCall) {
    EXPECT_EQ(geo.zoneFrame(kWhole, {0, 0, 1000, 800}), (Rect{0, 0, 1000, 800}));
    settings.margin = 12;
    EXPECT_EQ(geo.zoneFrame(kWhole, {0, 0, 1000, 800}), (Rect{12, 12, 976, 776}));
}

TEST_F(GeoTest, ExtremeSettingsGiveAFrameThatCannotBeExpressed) {
    setSpacing(1e308, -1e308);

    const Rect frame = geo.zoneFrame({true, 1e300, -1e300, 1e300, 1e300}, kArea);

    EXPECT_FALSE(desktop.accessibility().canExpress(frame));
}

} // namespace
} // namespace tessarel
