// SPDX-License-Identifier: MIT

#include "settings_ui/editor/zone_editing_fixture.h"

namespace tessarel {
namespace {

/// Tests which zone, edge or corner a press grabs.
class ZoneGripTest : public ZoneEditingTest {};

TEST_F(ZoneGripTest, APressInAZoneSelectsAndGrabsIt) {
    put({Presets::z(0, 0, 30, 50), Presets::z(50, 0, 30, 50)});

    EXPECT_TRUE(press(60, 20));

    EXPECT_EQ(editing.selected, 1);
    EXPECT_EQ(editing.grip(), (ZoneEditing::Grip{Mode::Move, {}, 1}));
}

TEST_F(ZoneGripTest, APressInTheSelectedZoneGrabsItWithoutSelectingItAgain) {
    put({Presets::z(0, 0, 30, 50)});

    EXPECT_FALSE(press(10, 20));

    EXPECT_EQ(editing.grip().mode, Mode::Move);
}

TEST_F(ZoneGripTest, APressOnEmptySpaceGrabsNothingAndKeepsTheSelection) {
    put({Presets::z(0, 0, 30, 50), Presets::z(50, 0, 30, 50)});
    editing.selected = 1;

    EXPECT_FALSE(press(40, 80));

    EXPECT_EQ(editing.selected, 1);
    EXPECT_EQ(editing.grip().mode, Mode::None);
    EXPECT_FALSE(drag(50, 90));
    EXPECT_FALSE(editing.release());
}

TEST_F(ZoneGripTest, OfOverlappingZonesTheSmallerOneIsHit) {
    put({Presets::z(0, 0, 100, 100), Presets::z(20, 20, 60, 60), Presets::z(30, 30, 61, 60)});
    editing.selected = 8;

    press(50, 50);

    EXPECT_EQ(editing.selected, 1);
}

TEST_F(ZoneGripTest, OfOverlappingZonesOfOneSizeTheEarlierOneIsHit) {
    put({Presets::z(0, 0, 100, 100), Presets::z(30, 30, 50, 40), Presets::z(20, 20, 40, 50)});
    editing.selected = 8;

    press(50, 50);

    EXPECT_EQ(editing.selected, 1);
}

TEST_F(ZoneGripTest, ADisabledZoneIsNotHit) {
    put({Presets::z(0, 0, 100, 100), {false, 20, 20, 60, 60}});
    editing.selected = 8;

    press(50, 50);

    EXPECT_EQ(editing.selected, 0);
}

TEST_F(ZoneGripTest, AZoneIncludesItsLeftAndTopEdgesButNotItsRightAndBottomEdges) {
    put({Presets::z(20, 20, 40, 40)});
    editing.selected = 8;

    EXPECT_EQ(editing.gripAt(at(20, 20), kBounds).mode, Mode::Move);
    EXPECT_EQ(editing.gripAt(at(60, 40), kBounds).mode, Mode::None);
    EXPECT_EQ(editing.gripAt(at(40, 60), kBounds).mode, Mode::None);
}

TEST_F(ZoneGripTest, EdgesAreGrabbedUpToEightPointsAway) {
    put({Presets::z(20, 20, 40, 40)}); // 100 to 300 and 80 to 240 points

    EXPECT_EQ(edgesAt({92, 160}), (ZoneEdges{.left = true}));
    EXPECT_EQ(edgesAt({108, 160}), (ZoneEdges{.left = true}));
    EXPECT_EQ(edgesAt({91.9, 160}), ZoneEdges{});
    EXPECT_EQ(edgesAt({108.1, 160}), ZoneEdges{});
    EXPECT_EQ(edgesAt({308, 160}), (ZoneEdges{.right = true}));
    EXPECT_EQ(edgesAt({308.1, 160}), ZoneEdges{});
    EXPECT_EQ(edgesAt({200, 72}), (ZoneEdges{.top = true}));
    EXPECT_EQ(edgesAt({200, 71.9}), ZoneEdges{});
    EXPECT_EQ(edgesAt({200, 248}), (ZoneEdges{.bottom = true}));
    EXPECT_EQ(edgesAt({200, 248.1}), ZoneEdges{});
}

TEST_F(ZoneGripTest, ACornerGrabsBothItsEdgesAlsoFromOutside) {
    put({Presets::z(20, 20, 40, 40)});

    EXPECT_EQ(edgesAt({92, 72}), (ZoneEdges{.left = true, .top = true}));
    EXPECT_EQ(edgesAt({308, 72}), (ZoneEdges{.right = true, .top = true}));
    EXPECT_EQ(edgesAt({92, 248}), (ZoneEdges{.left = true, .bottom = true}));
    EXPECT_EQ(edgesAt({308, 248}), (ZoneEdges{.right = true, .bottom = true}));
    EXPECT_EQ(edgesAt({92, 71.9}), ZoneEdges{}) << "beyond the band beside the zone";
}

TEST_F(ZoneGripTest, ANarrowZoneIsGrabbedAtTheNearerSide) {
    put({Presets::z(20, 20, 2, 40)}); // 100 to 110 points

    EXPECT_EQ(edgesAt({104, 160}), (ZoneEdges{.left = true}));
    EXPECT_EQ(edgesAt({106, 160}), (ZoneEdges{.right = true}));
    EXPECT_EQ(edgesAt({105, 160}), (ZoneEdges{.left = true})) << "exactly midway";
}

TEST_F(ZoneGripTest, ALowZoneIsGrabbedAtTheNearerSide) {
    put({Presets::z(20, 20, 40, 2)}); // 80 to 88 points

    EXPECT_EQ(edgesAt({200, 83}), (ZoneEdges{.top = true}));
    EXPECT_EQ(edgesAt({200, 85}), (ZoneEdges{.bottom = true}));
    EXPECT_EQ(edgesAt({200, 84}), (ZoneEdges{.top = true})) << "exactly midway";
}

TEST_F(ZoneGripTest, AnEdgeOfTheSelectedZoneWinsOverAZoneAbove) {
    put({Presets::z(0, 0, 50, 100), Presets::z(50, 0, 50, 100)});

    EXPECT_FALSE(press(51, 40));

    EXPECT_EQ(editing.selected, 0);
    EXPECT_EQ(editing.grip(), (ZoneEditing::Grip{Mode::Resize, {.right = true}, 0}));
}

TEST_F(ZoneGripTest, OnlyTheSelectedZoneHasEdgesToGrab) {
    put({Presets::z(0, 0, 30, 100), Presets::z(50, 0, 50, 100)});

    press(51, 40);

    EXPECT_EQ(editing.selected, 1);
    EXPECT_EQ(editing.grip().mode, Mode::Move);
}

TEST_F(ZoneGripTest, ADisabledSelectionHasNoEdgesToGrab) {
    put({{false, 20, 20, 40, 40}});

    EXPECT_EQ(edgesAt({100, 160}), ZoneEdges{});
    EXPECT_EQ(editing.selectedZone(), nullptr);
}

TEST_F(ZoneGripTest, ASelectionOutOfRangeGrabsNothing) {
    for (const int beyond : {-1, 9, 1000}) {
        editing.selected = beyond;
        EXPECT_EQ(editing.selectedZone(), nullptr);
        EXPECT_EQ(edgesAt({0, 0}), ZoneEdges{});
        EXPECT_FALSE(editing.disableSelected());
    }
}

TEST_F(ZoneGripTest, ADragWhoseSelectionIsOutOfRangeDoesNothing) {
    put({Presets::z(20, 20, 40, 40)});
    press(40, 40);
    const AppSettings before = settings;
    editing.selected = 9;

    EXPECT_FALSE(drag(50, 50));

    EXPECT_EQ(settings, before);
    EXPECT_TRUE(editing.release()) << "the grab is released nevertheless";
}

TEST_F(ZoneGripTest, DraggingInAPictureWithoutExtentDoesNothing) {
    put({Presets::z(20, 20, 40, 40)});
    press(40, 40);

    EXPECT_FALSE(editing.drag({1, 1}, {0, 400}, Snapping::On));
    EXPECT_FALSE(editing.drag({1, 1}, {500, 0}, Snapping::On));
    EXPECT_FALSE(editing.drag({1, 1}, {-500, -400}, Snapping::On));
    EXPECT_EQ(zone(0), Presets::z(20, 20, 40, 40));
}

TEST_F(ZoneGripTest, AClickWithoutADragIsReleasedOnce) {
    put({Presets::z(20, 20, 40, 40)});
    press(40, 40);

    EXPECT_TRUE(editing.release());
    EXPECT_FALSE(editing.release());
    EXPECT_EQ(zone(0), Presets::z(20, 20, 40, 40));
}

} // namespace
} // namespace tessarel
