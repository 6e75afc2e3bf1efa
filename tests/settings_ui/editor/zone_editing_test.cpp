// SPDX-License-Identifier: MIT

#include "settings_ui/editor/zone_editing_fixture.h"

#include <cmath>
#include <limits>

namespace tessarel {
namespace {

// Moving

TEST_F(ZoneEditingTest, AMoveIsRelativeToTheZoneAtThePress) {
    put({Presets::z(10, 10, 30, 30)});
    press(20, 20);

    drag(60, 60, Snapping::Off);
    drag(22.5, 17, Snapping::Off);

    EXPECT_EQ(zone(0), Presets::z(12.5, 7, 30, 30));
}

TEST_F(ZoneEditingTest, ADragToANonFinitePointChangesNothing) {
    put({Presets::z(10, 10, 30, 30)});
    press(20, 20);

    EXPECT_FALSE(drag(std::numeric_limits<double>::quiet_NaN(), 20));
    EXPECT_EQ(zone(0), Presets::z(10, 10, 30, 30));
}

TEST_F(ZoneEditingTest, AMovedZoneStopsAtEveryBorder) {
    put({Presets::z(10, 10, 30, 40)});
    press(20, 20);

    drag(150, 20, Snapping::Off);
    EXPECT_EQ(zone(0), Presets::z(70, 10, 30, 40));
    drag(-150, 20, Snapping::Off);
    EXPECT_EQ(zone(0), Presets::z(0, 10, 30, 40));
    drag(20, 150, Snapping::Off);
    EXPECT_EQ(zone(0), Presets::z(10, 60, 30, 40));
    drag(20, -150, Snapping::Off);
    EXPECT_EQ(zone(0), Presets::z(10, 0, 30, 40));
}

TEST_F(ZoneEditingTest, AZoneLargerThanTheScreenEndsWhereTheScreenEnds) {
    put({Presets::z(0, 0, 120, 130)});
    press(50, 50);

    drag(60, 60);

    EXPECT_EQ(zone(0), Presets::z(-20, -30, 120, 130));
}

TEST_F(ZoneEditingTest, AMovedZoneSnapsByTheNearerEdge) {
    put({Presets::z(10, 10, 31, 31)});
    settings.gridStep = 10;
    press(20, 20);

    drag(33.5, 20); // from 23.5 to 54.5: 1.5 from the guide at 25, 4.5 from the grid at 50
    EXPECT_EQ(zone(0).x, 25);

    drag(28.5, 20); // from 18.5 to 49.5: 1.5 from the grid at 20, 0.5 from the guide at 50
    EXPECT_EQ(zone(0).x, 50 - 31);
    EXPECT_EQ(zone(0).w, 31);
}

TEST_F(ZoneEditingTest, WithoutAGridAMoveSnapsOnlyWhenBothEdgesAreAttracted) {
    put({Presets::z(10, 10, 31, 31)});
    press(20, 20);

    drag(33.5, 20);
    EXPECT_EQ(zone(0).x, 23.5) << "nothing attracts the right edge, which is therefore the nearer one";

    put({Presets::z(10, 10, 25, 31)});
    press(20, 20);
    drag(33.5, 20);
    EXPECT_EQ(zone(0).x, 25) << "both edges are attracted";
}

TEST_F(ZoneEditingTest, ATieBetweenTheEdgesGoesToTheLeftAndTheTop) {
    put({Presets::z(10, 10, 26, 26)}); // dragged below to 24.5 and 50.5, each 0.5 from a guide
    press(20, 20);

    drag(34.5, 34.5);

    EXPECT_EQ(zone(0), Presets::z(25, 25, 26, 26));
}

TEST_F(ZoneEditingTest, AMovedZoneSnapsToItsNeighbours) {
    put({Presets::z(10, 10, 10, 10), Presets::z(42, 0, 12, 61)});
    settings.gridStep = 10;
    press(15, 15);

    drag(60, 67); // to x 55 and y 62

    EXPECT_EQ(zone(0), Presets::z(54, 61, 10, 10));
}

TEST_F(ZoneEditingTest, ADisabledNeighbourDoesNotAttract) {
    put({Presets::z(10, 10, 10, 10), {false, 42, 0, 12, 61}});
    settings.gridStep = 10;
    press(15, 15);

    drag(60, 67);

    EXPECT_EQ(zone(0), Presets::z(60, 60, 10, 10));
}

TEST_F(ZoneEditingTest, AZoneDoesNotAttractItself) {
    put({Presets::z(10, 10, 10, 10)});
    press(15, 15);

    drag(16, 16);

    EXPECT_EQ(zone(0), Presets::z(11, 11, 10, 10));
}

// Resizing

TEST_F(ZoneEditingTest, EveryEdgeFollowsThePointer) {
    put({Presets::z(20, 20, 40, 40)});
    struct Case {
        Point from;
        Zone expected;
    };
    for (const auto& [from, expected] :
         {Case{at(20, 40), Presets::z(17, 20, 43, 40)}, Case{at(60, 40), Presets::z(20, 20, 37, 40)},
          Case{at(40, 20), Presets::z(20, 17, 40, 43)}, Case{at(40, 60), Presets::z(20, 20, 40, 37)},
          Case{at(20, 20), Presets::z(17, 17, 43, 43)}, Case{at(60, 60), Presets::z(20, 20, 37, 37)},
          Case{at(60, 20), Presets::z(20, 17, 37, 43)}, Case{at(20, 60), Presets::z(17, 20, 43, 37)}}) {
        put({Presets::z(20, 20, 40, 40)});
        editing.press(from, kBounds);
        editing.drag({from.x - 15, from.y - 12}, kBounds, Snapping::Off);
        EXPECT_EQ(zone(0), expected) << from.x << ' ' << from.y;
    }
}

TEST_F(ZoneEditingTest, ALeftOrTopEdgeStopsTwoPercentBeforeItsOpposite) {
    put({Presets::z(20, 20, 40, 40)});
    press(20, 20);

    drag(90, 90);

    EXPECT_EQ(zone(0), Presets::z(58, 58, 2, 2)) << "the right and bottom edges stay";
}

TEST_F(ZoneEditingTest, ARightOrBottomEdgePushesItsOppositeAlong) {
    put({Presets::z(20, 20, 40, 40)});
    press(60, 60);

    drag(5, 10);
    EXPECT_EQ(zone(0), Presets::z(3, 8, 2, 2));

    drag(-50, -50);
    EXPECT_EQ(zone(0), Presets::z(-52, -52, 2, 2)) << "even off the screen";
}

TEST_F(ZoneEditingTest, AResizedZoneStaysOnTheScreen) {
    put({Presets::z(20, 20, 40, 40)});
    press(20, 20);
    drag(-50, -50);
    EXPECT_EQ(zone(0), Presets::z(0, 0, 60, 60));

    put({Presets::z(20, 20, 40, 40)});
    press(60, 60);
    drag(150, 150);
    EXPECT_EQ(zone(0), Presets::z(20, 20, 80, 80));
}

TEST_F(ZoneEditingTest, TheLimitsAlsoApplyToEdgesThatAreNotDragged) {
    put({Presets::z(-20, 20, 60, 40)});
    press(40, 40);

    drag(45, 40, Snapping::Off);

    EXPECT_EQ(zone(0), Presets::z(0, 20, 45, 40)) << "the left edge moves onto the screen";
}

TEST_F(ZoneEditingTest, AResizeKeepsItsEdgeWhateverThePointerComesNear) {
    put({Presets::z(20, 20, 40, 40)});
    press(20, 40);

    drag(58, 40, Snapping::Off);
    drag(30, 40, Snapping::Off);

    EXPECT_EQ(zone(0), Presets::z(30, 20, 30, 40));
}

// Snapping and rounding of the left edge of a zone whose right edge is at 90 percent

class EdgeSnapTest : public ZoneEditingTest {
protected:
    EdgeSnapTest() {
        put({Presets::z(60, 10, 30, 30)});
        press(60, 25);
    }

    double leftEdgeAt(double percent, Snapping snapping = Snapping::On) {
        drag(percent, 25, snapping);
        return zone(0).x;
    }
};

TEST_F(EdgeSnapTest, TheGridRoundsHalvesAwayFromZero) {
    settings.gridStep = 5;

    EXPECT_EQ(leftEdgeAt(12.5), 15);
    EXPECT_EQ(leftEdgeAt(12.4), 10);
}

TEST_F(EdgeSnapTest, WithoutAGridTheValueIsKept) {
    for (const double step : {0.0, -5.0}) {
        settings.gridStep = step;
        EXPECT_EQ(leftEdgeAt(12.5), 12.5);
    }
}

TEST_F(EdgeSnapTest, AGuideAttractsFromLessThanOnePointSixPercent) {
    settings.gridStep = 1;

    EXPECT_EQ(leftEdgeAt(24), 25);
    EXPECT_EQ(leftEdgeAt(26.4), 25);
    EXPECT_EQ(leftEdgeAt(26.6), 27) << "1.6 is not below 1.6";
    EXPECT_EQ(leftEdgeAt(23.25), 23);
}

TEST_F(EdgeSnapTest, EveryGuideAttracts) {
    EXPECT_EQ(leftEdgeAt(1), 0);
    EXPECT_EQ(leftEdgeAt(32), 33.33);
    EXPECT_EQ(leftEdgeAt(51), 50);
    EXPECT_EQ(leftEdgeAt(66), 66.67);
    EXPECT_EQ(leftEdgeAt(76), 75);
}

TEST_F(EdgeSnapTest, TheEdgeOfTheScreenIsAGuide) {
    put({Presets::z(60, 10, 30, 30)});
    press(90, 25);

    drag(99, 25);

    EXPECT_EQ(zone(0), Presets::z(60, 10, 40, 30));
}

TEST_F(EdgeSnapTest, AGuideWinsOverAnEquallyNearEdge) {
    zone(1) = Presets::z(52, 50, 20, 20);

    EXPECT_EQ(leftEdgeAt(51), 50);
    EXPECT_EQ(leftEdgeAt(51.5), 52);
}

TEST_F(EdgeSnapTest, AnEarlierZoneWinsOverAnEquallyNearLaterOne) {
    zone(1) = Presets::z(12, 50, 20, 20);
    zone(2) = Presets::z(10, 50, 20, 20);

    EXPECT_EQ(leftEdgeAt(11), 12);
}

TEST_F(EdgeSnapTest, TheNearestEdgeWinsOverAnEarlierOne) {
    zone(1) = Presets::z(12, 50, 20, 20);
    zone(2) = Presets::z(10.5, 50, 20, 20);

    EXPECT_EQ(leftEdgeAt(11), 10.5);
}

TEST_F(EdgeSnapTest, ThirdsSnapExactlyAndAreStoredWithTwoDecimals) {
    EXPECT_EQ(leftEdgeAt(33), 33.33);
    EXPECT_EQ(zone(0).w, 56.67) << "90 minus the exact third, rounded separately";
}

TEST_F(EdgeSnapTest, WithoutSnappingTheValueIsStillLimitedAndRounded) {
    settings.gridStep = 5;

    EXPECT_EQ(leftEdgeAt(24.876, Snapping::Off), 24.88);
    EXPECT_EQ(leftEdgeAt(-3, Snapping::Off), 0);
    EXPECT_EQ(leftEdgeAt(95, Snapping::Off), 88);
}

TEST_F(EdgeSnapTest, SnappingCanBeSwitchedOffAndOnWithinOneDrag) {
    EXPECT_EQ(leftEdgeAt(24, Snapping::Off), 24);
    EXPECT_EQ(leftEdgeAt(24, Snapping::On), 25);
}

TEST_F(ZoneEditingTest, HalvesOfAHundredthAreRoundedAwayFromZero) {
    put({Presets::z(0, 0, 120, 30)});
    zone(0).w = 100.125; // the limits put it at x = -0.125
    press(50, 15);

    drag(60, 15);

    EXPECT_EQ(zone(0).x, -0.13);
    EXPECT_EQ(zone(0).w, 100.13);
}

TEST_F(ZoneEditingTest, ADragKeepsTheEnabledStateOfThePress) {
    put({Presets::z(20, 20, 40, 40)});
    press(40, 40);
    zone(0).enabled = false; // changed elsewhere during the drag

    drag(42, 40);

    EXPECT_TRUE(zone(0).enabled) << "as at the time of the press";
}

// Delete

TEST_F(ZoneEditingTest, DeleteDisablesTheZoneInItsPlace) {
    put({Presets::z(0, 0, 30, 50), Presets::z(50, 0, 30, 50)});
    editing.selected = 1;

    EXPECT_TRUE(editing.disableSelected());

    EXPECT_EQ(zone(1), (Zone{false, 50, 0, 30, 50}));
    EXPECT_EQ(settings.zones.size(), kZoneSlots);
    EXPECT_EQ(editing.selected, 1);
}

TEST_F(ZoneEditingTest, DeletingADisabledZoneIsAnEditToo) {
    put({});

    EXPECT_TRUE(editing.disableSelected());
}

// Settings with extreme values

TEST_F(ZoneEditingTest, ExtremeNumbersDoNotSpreadToOtherZones) {
    constexpr double kHuge = std::numeric_limits<double>::max();
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    const double absurd[] = {kHuge, -kHuge, kInfinity, -kInfinity, std::nan(""), 1e300, -1e17, 5e-324, -0.0};
    for (const double one : absurd) {
        for (const double other : absurd) {
            put({{true, one, 20, other, 40}, {true, 20, one, 40, other}, Presets::z(20, 20, 40, 40)});
            settings.gridStep = other;
            editing.selected = 2;
            press(60, 40);
            drag(70, 40);
            EXPECT_TRUE(std::isfinite(zone(2).x) && std::isfinite(zone(2).w)) << one << ' ' << other;
            for (editing.selected = 0; editing.selected < 2; ++editing.selected) {
                press(40, 40);
                drag(70, 70);
                editing.release();
            }
        }
    }
}

TEST_F(ZoneEditingTest, AnEditNeverGivesNonFiniteNumbers) {
    const Zone huge{true, 0, 0, std::numeric_limits<double>::max(), std::numeric_limits<double>::max()};
    put({huge});
    press(50, 50);

    drag(60, 60);

    EXPECT_TRUE(std::isfinite(zone(0).x));
    EXPECT_EQ(zone(0).w, huge.w) << "too large to be rounded to two decimals";
}

TEST_F(ZoneEditingTest, AGridTooFineToComputeWithIsIgnored) {
    put({Presets::z(60, 10, 30, 30)});
    settings.gridStep = 5e-324;
    press(60, 25);

    drag(12.5, 25);

    EXPECT_EQ(zone(0).x, 12.5);
}

TEST_F(ZoneEditingTest, AnEmptyListHasNothingToEdit) {
    settings.zones.clear();

    EXPECT_FALSE(press(50, 50));
    EXPECT_FALSE(drag(60, 60));
    EXPECT_FALSE(editing.disableSelected());
}

} // namespace
} // namespace tessarel
