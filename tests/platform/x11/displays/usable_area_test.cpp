// SPDX-License-Identifier: MIT

#include "platform/x11/displays/usable_area.h"

#include <gtest/gtest.h>

#include <array>

namespace tessarel::x11 {
namespace {

using Edge = Strut::Edge;

constexpr Rect kLeftMonitor{0, 0, 1440, 900};
constexpr Rect kRightMonitor{1440, 0, 1120, 1024};
constexpr Size kRootSize{2560, 1024};
constexpr double kWholeEdge = 65535;

Rect usableOf(const Rect& monitor, const Strut& strut, const Size& root = kRootSize) {
    return usableAreas(std::array{monitor}, root, {.struts = {strut}, .areaPerMonitor = {}, .commonArea = {}})
        .front();
}

TEST(StrutsTest, TwelveValuesGiveEachEdgeItsSpan) {
    const std::array<std::uint32_t, 12> values{10, 20, 30, 40, 1, 2, 3, 4, 5, 6, 7, 8};

    EXPECT_EQ(strutsFrom(values), (std::vector<Strut>{{Edge::Left, 10, 1, 2},
                                                      {Edge::Right, 20, 3, 4},
                                                      {Edge::Top, 30, 5, 6},
                                                      {Edge::Bottom, 40, 7, 8}}));
}

TEST(StrutsTest, FourValuesGiveWholeEdges) {
    const std::array<std::uint32_t, 4> values{0, 0, 30, 0};

    EXPECT_EQ(strutsFrom(values), (std::vector<Strut>{{Edge::Top, 30, 0, kWholeEdge}}));
}

TEST(StrutsTest, AnyOtherNumberOfValuesIsRejected) {
    const std::array<std::uint32_t, 13> values{10, 10, 10, 10};

    for (const std::size_t length : {0U, 1U, 3U, 5U, 11U, 13U})
        EXPECT_TRUE(strutsFrom(std::span(values).first(length)).empty()) << length;
}

TEST(StrutsTest, NegativeAndHugeDepthsAreIgnored) {
    const std::array<std::uint32_t, 4> values{0xFFFFFFFF, 0x80000000, 70000, 30};

    EXPECT_EQ(strutsFrom(values), (std::vector<Strut>{{Edge::Bottom, 30, 0, kWholeEdge}}));
}

TEST(StrutsTest, AReversedSpanIsIgnored) {
    const std::array<std::uint32_t, 12> values{0, 0, 30, 0, 0, 0, 0, 0, 500, 100, 0, 0};

    EXPECT_TRUE(strutsFrom(values).empty());
}

TEST(RectanglesTest, EveryFourValuesGiveARectangle) {
    const std::array<std::uint32_t, 8> values{0, 25, 1440, 875, 0xFFFFFFFF, 0, 1120, 1024};

    EXPECT_EQ(rectanglesFrom(values), (std::vector<Rect>{{0, 25, 1440, 875}, {-1, 0, 1120, 1024}}));
}

TEST(RectanglesTest, AnIncompleteGroupRejectsAllRectangles) {
    const std::array<std::uint32_t, 7> values{0, 25, 1440, 875, 0, 0, 1120};

    EXPECT_TRUE(rectanglesFrom(values).empty());
}

TEST(UsableAreaTest, WithoutReservationsAllOfAMonitorIsUsable) {
    const auto areas = usableAreas(std::array{kLeftMonitor, kRightMonitor}, kRootSize, {});

    EXPECT_EQ(areas, (std::vector{kLeftMonitor, kRightMonitor}));
}

TEST(UsableAreaTest, StrutsAreMeasuredFromTheEdgesOfTheRootWindow) {
    EXPECT_EQ(usableOf(kLeftMonitor, {Edge::Left, 50, 0, 899}), (Rect{50, 0, 1390, 900}));
    EXPECT_EQ(usableOf(kRightMonitor, {Edge::Right, 50, 0, 1023}), (Rect{1440, 0, 1070, 1024}));
    EXPECT_EQ(usableOf(kLeftMonitor, {Edge::Top, 25, 0, 1439}), (Rect{0, 25, 1440, 875}));
    EXPECT_EQ(usableOf(kRightMonitor, {Edge::Bottom, 30, 1440, 2559}), (Rect{1440, 0, 1120, 994}));
}

TEST(UsableAreaTest, AStrutBelowAShorterMonitorTakesOnlyWhatReachesIntoIt) {
    // The root window ends 124 pixels below the left monitor.
    EXPECT_EQ(usableOf(kLeftMonitor, {Edge::Bottom, 124, 0, 1439}), kLeftMonitor);
    EXPECT_EQ(usableOf(kLeftMonitor, {Edge::Bottom, 154, 0, 1439}), (Rect{0, 0, 1440, 870}));
}

TEST(UsableAreaTest, AStrutBesideTheMonitorLeavesItAlone) {
    const Strut onTheRight{Edge::Top, 30, 1440, 2559};

    EXPECT_EQ(usableOf(kLeftMonitor, onTheRight), kLeftMonitor);
    EXPECT_EQ(usableOf(kRightMonitor, onTheRight), (Rect{1440, 30, 1120, 994}));
}

TEST(UsableAreaTest, ASpanAppliesFromTheFirstSharedPixel) {
    EXPECT_EQ(usableOf(kRightMonitor, {Edge::Top, 30, 0, 1439}), kRightMonitor);
    EXPECT_EQ(usableOf(kRightMonitor, {Edge::Top, 30, 0, 1440}), (Rect{1440, 30, 1120, 994}));
}

TEST(UsableAreaTest, ABarAtAnInnerEdgeDoesNotWipeOutTheMonitorBeforeIt) {
    const Strut leftOfRight{Edge::Left, 1490, 0, 1023};

    EXPECT_EQ(usableOf(kRightMonitor, leftOfRight), (Rect{1490, 0, 1070, 1024}));
    EXPECT_EQ(usableOf(kLeftMonitor, leftOfRight), kLeftMonitor);
}

TEST(UsableAreaTest, StrutsOfDifferentEdgesCombineAndTheDeepestOfAnEdgeCounts) {
    const std::vector<Strut> struts{{Edge::Top, 25, 0, 1439},
                                    {Edge::Top, 40, 0, 700},
                                    {Edge::Top, 10, 0, 1439},
                                    {Edge::Left, 60, 0, 899}};

    const auto areas = usableAreas(std::array{kLeftMonitor}, kRootSize,
                                   {.struts = struts, .areaPerMonitor = {}, .commonArea = {}});

    EXPECT_EQ(areas.front(), (Rect{60, 40, 1380, 860}));
}

TEST(UsableAreaTest, AStrutThatLeavesLessThanAQuarterIsIgnored) {
    EXPECT_EQ(usableOf(kLeftMonitor, {Edge::Top, 675, 0, 1439}), (Rect{0, 675, 1440, 225}));
    for (const double depth : {676.0, 900.0, 5000.0, 65535.0})
        EXPECT_EQ(usableOf(kLeftMonitor, {Edge::Top, depth, 0, 1439}), kLeftMonitor) << depth;
}

TEST(UsableAreaTest, StrutsThatWouldMeetInTheMiddleDoNotEmptyTheMonitor) {
    const std::vector<Strut> struts{{Edge::Top, 500, 0, 1439}, {Edge::Bottom, 524, 0, 1439}};

    const auto areas = usableAreas(std::array{kLeftMonitor}, kRootSize,
                                   {.struts = struts, .areaPerMonitor = {}, .commonArea = {}});

    EXPECT_EQ(areas.front(), (Rect{0, 500, 1440, 400}));
}

TEST(UsableAreaTest, TheWindowManagersAreasTakePrecedenceOverStruts) {
    const ReservedSpace reserved{.struts = {{Edge::Top, 99, 0, kWholeEdge}},
                                 .areaPerMonitor = {{1440, 0, 1120, 994}, {0, 0, 1440, 900}},
                                 .commonArea = Rect{0, 0, 2560, 994}};

    EXPECT_EQ(usableAreas(std::array{kLeftMonitor, kRightMonitor}, kRootSize, reserved),
              (std::vector<Rect>{{0, 0, 1440, 900}, {1440, 0, 1120, 994}}));
}

TEST(UsableAreaTest, TheWindowManagersAreasAreIgnoredUnlessEachMonitorHasOne) {
    const std::array monitors{kLeftMonitor, kRightMonitor};
    const std::vector<Strut> struts{{Edge::Top, 25, 0, 1439}};
    const std::vector<std::vector<Rect>> doubtful = {
        {{0, 0, 2560, 994}},                                         // one for both monitors
        {{0, 0, 1440, 900}, {0, 10, 1440, 800}},                     // both in the left monitor
        {{0, 0, 1440, 900}, {1440, 0, 1120, 994}, {0, 0, 100, 100}}, // one too many
        {{0, 0, 1440, 900}, {1440, 0, 1120, 1100}},                  // sticks out
        {{0, 0, 1440, 900}, {1440, 0, 0, 0}},                        // empty
        {{0, 0, 1440, 900}, {2560, 1024, -1120, -1024}},             // reversed
    };

    for (const auto& areas : doubtful)
        EXPECT_EQ(usableAreas(monitors, kRootSize,
                              {.struts = struts, .areaPerMonitor = areas, .commonArea = std::nullopt}),
                  (std::vector{Rect{0, 25, 1440, 875}, kRightMonitor}));
}

TEST(UsableAreaTest, TheCommonAreaCountsForASingleMonitor) {
    const ReservedSpace reserved{
        .struts = {{Edge::Top, 25, 0, 1439}}, .areaPerMonitor = {}, .commonArea = Rect{0, 0, 1440, 874}};

    EXPECT_EQ(usableAreas(std::array{kLeftMonitor}, {1440, 900}, reserved).front(), (Rect{0, 25, 1440, 849}));
}

TEST(UsableAreaTest, TheCommonAreaDoesNotCountForSeveralMonitors) {
    const ReservedSpace reserved{.struts = {}, .areaPerMonitor = {}, .commonArea = Rect{0, 0, 2560, 994}};

    EXPECT_EQ(usableAreas(std::array{kLeftMonitor, kRightMonitor}, kRootSize, reserved),
              (std::vector{kLeftMonitor, kRightMonitor}));
}

TEST(UsableAreaTest, AnAbsurdCommonAreaIsIgnored) {
    for (const Rect& absurd : {Rect{0, 0, 0, 0}, Rect{5000, 0, 1440, 900}, Rect{0, 0, 1440, 20},
                               Rect{1440, 900, -1440, -900}, Rect{-1, -1, 1, 1}})
        EXPECT_EQ(usableAreas(std::array{kLeftMonitor}, {1440, 900},
                              {.struts = {}, .areaPerMonitor = {}, .commonArea = absurd})
                      .front(),
                  kLeftMonitor);
}

TEST(UsableAreaTest, WithoutMonitorsThereAreNoAreas) {
    EXPECT_TRUE(
        usableAreas(
            {}, kRootSize,
            {.struts = {{Edge::Top, 25, 0, 99}}, .areaPerMonitor = {}, .commonArea = Rect{0, 0, 10, 10}})
            .empty());
}

} // namespace
} // namespace tessarel::x11
