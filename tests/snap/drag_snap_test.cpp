// SPDX-License-Identifier: MIT

#include "snap/drag_snap.h"

#include "snap/snap_test.h"

#include <gmock/gmock.h>

namespace tessarel {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class DragSnapTest : public SnapTest {
protected:
    /// Restores the window and returns its frame.
    Rect restored() {
        engine.restoreFocused();
        return desktop.frame(window);
    }
};

TEST_F(DragSnapTest, AWindowDroppedWithTheTriggerHeldIsPlacedInTheZone) {
    mouse.hold(kShift);
    grab(window);
    dragTo({1000, 500});
    EXPECT_EQ(labels(), "1[2]");
    EXPECT_EQ(picture.screenFrame, screen.frame);

    mouse.release();
    EXPECT_FALSE(picture.isVisible) << "the overlay goes at once";
    EXPECT_NE(desktop.frame(window), kRight);
    desktop.advance(30ms);

    EXPECT_EQ(desktop.frame(window), kRight);
}

TEST_F(DragSnapTest, ThePlacementComesThirtyMillisecondsAfterTheRelease) {
    mouse.hold(kShift);
    grab(window);
    dragTo({1000, 500});
    mouse.release();

    desktop.advance(30ms - 1ns);
    EXPECT_NE(desktop.frame(window), kRight);

    desktop.advance(1ns);
    EXPECT_EQ(desktop.frame(window), kRight);
}

TEST_F(DragSnapTest, RestoreGoesBackToTheFrameBeforeTheDrag) {
    mouse.hold(kShift);
    grab(window);
    dragTo({1000, 500});
    drop();

    EXPECT_EQ(restored(), kStart);
}

TEST_F(DragSnapTest, TheApplicationIsRememberedForTheZone) {
    settings.zones = zones({{false, 0, 0, 50, 100}, kLeftHalf, kRightHalf});
    mouse.hold(kShift);
    grab(window);
    dragTo({1000, 500});
    EXPECT_TRUE(settings.appZones.empty());

    drop();

    EXPECT_EQ(settings.appZones.at("org.example.editor"), 2);
    EXPECT_EQ(desktop.preferencesStorage().writes, 1);
}

TEST_F(DragSnapTest, AnApplicationWithoutAnIdentifierIsNotRemembered) {
    window = desktop.openWindow(desktop.launch({}), {.axFrame = kStart});
    mouse.hold(kShift);
    grab(window);
    dragTo({1000, 500});
    drop();

    EXPECT_EQ(desktop.frame(window), kRight);
    EXPECT_TRUE(settings.appZones.empty());
    EXPECT_EQ(desktop.preferencesStorage().writes, 0);
}

TEST_F(DragSnapTest, AZoneThatTheDesktopRefusesIsNotRemembered) {
    mouse.hold(kShift);
    grab(window);
    dragTo({1000, 500});
    desktop.window(window).isTiled = true;
    drop();

    EXPECT_TRUE(settings.appZones.empty());
}

TEST_F(DragSnapTest, SettingsAreSavedAfterTheWindowIsPlaced) {
    Rect seen;
    desktop.preferencesStorage().whileWriting = [&] { seen = desktop.frame(window); };
    mouse.hold(kShift);
    grab(window);
    dragTo({1000, 500});
    drop();

    EXPECT_EQ(seen, kRight);
}

TEST_F(DragSnapTest, NothingIsRememberedWhenRememberingIsOff) {
    settings.rememberApps = false;
    mouse.hold(kShift);
    grab(window);
    dragTo({1000, 500});
    drop();

    EXPECT_EQ(desktop.frame(window), kRight);
    EXPECT_TRUE(settings.appZones.empty());
    EXPECT_EQ(desktop.preferencesStorage().writes, 0);
}

TEST_F(DragSnapTest, AnEdgeSnapIsNeverRemembered) {
    settings.edgeSnap = true;
    grab(window);
    dragTo({0, 450});
    EXPECT_THAT(shown(), ElementsAre(kLeftShown));
    drop();

    EXPECT_EQ(desktop.frame(window), kLeft);
    EXPECT_TRUE(settings.appZones.empty());
    EXPECT_EQ(desktop.preferencesStorage().writes, 0);
}

TEST_F(DragSnapTest, AZoneLeftForAnEdgeIsNotRemembered) {
    settings.edgeSnap = true;
    mouse.hold(kShift);
    grab(window);
    dragTo({1000, 500});
    mouse.hold(0);
    dragTo({0, 450});
    drop();

    EXPECT_EQ(desktop.frame(window), kLeft);
    EXPECT_TRUE(settings.appZones.empty());
}

TEST_F(DragSnapTest, AWindowThatCannotShrinkIsPulledIntoTheUsableArea) {
    desktop.window(window).minimum = {900, 480};
    mouse.hold(kShift);
    grab(window);
    dragTo({1000, 500});
    drop();

    EXPECT_EQ(desktop.frame(window), (Rect{-1000, -575, 900, 820}));
}

TEST_F(DragSnapTest, WithTheTriggerAlwaysEveryDragShowsTheZonesAndEdgesNeverSnap) {
    settings.dragTrigger = "always";
    settings.edgeSnap = true;
    settings.zones = zones({{true, 25, 25, 50, 50}});
    grab(window);
    dragTo({0, 450});
    EXPECT_EQ(labels(), "1");
    const Rect dropped = desktop.frame(window);
    drop();

    EXPECT_EQ(desktop.frame(window), dropped);
}

TEST_F(DragSnapTest, APointerOutsideEveryZoneShowsTheZonesAndSnapsNothing) {
    settings.zones = zones({{true, 0, 0, 25, 25}});
    mouse.hold(kShift);
    grab(window);
    dragTo({1000, 500});
    EXPECT_EQ(labels(), "1");
    const Rect dropped = desktop.frame(window);

    drop();

    EXPECT_EQ(desktop.frame(window), dropped);
}

TEST_F(DragSnapTest, TheBottomEdgeOffersNothingAndHidesTheOverlay) {
    settings.edgeSnap = true;
    grab(window);
    dragTo({0, 450});
    ASSERT_TRUE(picture.isVisible);

    dragTo({720, 899});

    EXPECT_FALSE(picture.isVisible);
    const Rect dropped = desktop.frame(window);
    drop();
    EXPECT_EQ(desktop.frame(window), dropped);
}

TEST_F(DragSnapTest, WithEveryZoneDisabledThereIsNoOverlay) {
    settings.zones = zones({});
    mouse.hold(kShift);
    grab(window);
    dragTo({1000, 500});

    EXPECT_FALSE(picture.isVisible);
}

TEST_F(DragSnapTest, AClickOnATitleBarDoesNothing) {
    mouse.hold(kShift);
    grab(window);
    drop();

    EXPECT_EQ(desktop.frame(window), kStart);
    EXPECT_EQ(picture.windows, 0);
}

TEST_F(DragSnapTest, AMoveOfThreePointsIsNoDrag) {
    mouse.hold(kShift);
    for (const Point& step : {Point{3, 0}, Point{-3, 0}, Point{0, 3}, Point{3, -3}}) {
        grab(window);
        dragTo({520 + step.x, 160 + step.y});
        EXPECT_FALSE(picture.isVisible) << step.x << ", " << step.y;
        drop();
        desktop.drag(window, kStart);
    }
}

TEST_F(DragSnapTest, AMoveOfMoreThanThreePointsOnEitherAxisIsADrag) {
    mouse.hold(kShift);
    for (const Point& step : {Point{3.01, 0}, Point{-4, 0}, Point{0, 3.01}, Point{1, -4}}) {
        grab(window);
        dragTo({520 + step.x, 160 + step.y});
        EXPECT_TRUE(picture.isVisible) << step.x << ", " << step.y;
        drop();
        desktop.drag(window, kStart);
    }
}

TEST_F(DragSnapTest, AClickAfterADragIsNoDrag) {
    mouse.hold(kShift);
    grab(window);
    dragTo({1000, 500});
    drop();
    ASSERT_EQ(desktop.frame(window), kRight);

    grab(window);
    dragTo({1011, 36}); // one point to the right and down
    EXPECT_FALSE(picture.isVisible);
    drop();

    EXPECT_EQ(picture.ordersFront, 1);
}

TEST_F(DragSnapTest, SlowMovesAddUp) {
    mouse.hold(kShift);
    grab(window);
    for (const double x : {521.0, 522.0, 523.0})
        dragTo({x, 160});
    EXPECT_FALSE(picture.isVisible);

    dragTo({524, 160});

    EXPECT_TRUE(picture.isVisible);
}

TEST_F(DragSnapTest, EscapeHidesTheOverlayAndTheReleaseDoesNothing) {
    mouse.hold(kShift);
    grab(window);
    dragTo({600, 300});
    ASSERT_TRUE(picture.isVisible);

    mouse.cancel();

    EXPECT_FALSE(picture.isVisible);
    moveTo({610, 300});
    drop();
    EXPECT_FALSE(picture.isVisible);
    EXPECT_EQ(desktop.frame(window), kStart);
}

TEST_F(DragSnapTest, AFrameIsReadAtMostEveryThirtyMillisecondsUntilTheWindowMoves) {
    mouse.hold(kShift);
    grab(window);
    (void)desktop.takeRequests();
    for (int millisecond = 0; millisecond < 300; ++millisecond) {
        moveTo({520 + (millisecond % 2 == 0 ? 1.0 : 0.0), 160});
        desktop.advance(1ms);
    }

    EXPECT_EQ(desktop.takeRequests().size(), 2U * 10U);
}

TEST_F(DragSnapTest, TheFrameIsReadAgainExactlyThirtyMillisecondsAfterTheLastRead) {
    grab(window);
    moveTo({521, 160});
    (void)desktop.takeRequests();

    desktop.advance(30ms - 1ns);
    moveTo({520, 160});
    EXPECT_THAT(desktop.takeRequests(), IsEmpty());

    desktop.advance(1ns);
    moveTo({521, 160});
    EXPECT_EQ(desktop.takeRequests().size(), 2U);
}

TEST_F(DragSnapTest, TheReadIntervalAppliesAcrossDrags) {
    mouse.hold(kShift);
    grab(window);
    moveTo({521, 160});
    mouse.release();
    mouse.press();

    moveTo({600, 160});
    EXPECT_FALSE(picture.isVisible);

    dragTo({601, 160});
    EXPECT_TRUE(picture.isVisible);
}

TEST_F(DragSnapTest, TheEventThatRevealsTheMoveAlreadyShowsTheOverlay) {
    mouse.hold(kShift);
    grab(window);
    moveTo({1000, 500});

    EXPECT_EQ(labels(), "1[2]");
}

TEST_F(DragSnapTest, OnceTheMoveIsSeenNoRequestIsSentUntilTheRelease) {
    mouse.hold(kShift);
    grab(window);
    dragTo({600, 160});
    ASSERT_TRUE(picture.isVisible);
    (void)desktop.takeRequests();

    for (int n = 0; n < 100; ++n)
        dragTo({600.0 + n, 300});
    mouse.release();
    EXPECT_THAT(desktop.takeRequests(), IsEmpty());

    desktop.advance(30ms);
    EXPECT_FALSE(desktop.takeRequests().empty());
}

TEST_F(DragSnapTest, OnlyAChangedHighlightIsPainted) {
    mouse.hold(kShift);
    grab(window);
    dragTo({600, 300});
    dragTo({601, 300});
    dragTo({602, 300});
    EXPECT_EQ(picture.drawings, 1);

    dragTo({1000, 300});
    EXPECT_EQ(picture.drawings, 2);
    EXPECT_EQ(labels(), "1[2]");
}

TEST_F(DragSnapTest, TheOverlayFollowsThePointerToAnotherScreen) {
    mouse.hold(kShift);
    grab(window);
    dragTo({600, 300});

    desktop.advance(30ms);
    mouse.moveTo({1000, 700});

    EXPECT_EQ(picture.screenFrame, (Rect{0, 0, 1280, 800}));
    EXPECT_THAT(shown(), ElementsAre(Rect{12, 31, 620, 725}, Rect{632, 31, 620, 725}));
    drop();
    EXPECT_EQ(desktop.frame(window), (Rect{632, 31, 620, 725}));
}

TEST_F(DragSnapTest, AScreenIncludesItsTopEdgeButNotItsBottomEdge) {
    desktop.addScreen({.frame = {-1440, 1400, 1440, 900}});
    mouse.hold(kShift);
    grab(window);
    dragTo({600, 0});
    EXPECT_EQ(picture.screenFrame, screen.frame) << "y 1400 in screen coordinates";

    dragTo({600, -1});
    EXPECT_EQ(picture.screenFrame, (Rect{-1440, 1400, 1440, 900}));
    dragTo({600, 899});
    EXPECT_EQ(picture.screenFrame, screen.frame);
    dragTo({600, 900});
    EXPECT_FALSE(picture.isVisible) << "y 500, below which there is no screen";
}

TEST_F(DragSnapTest, AScreenIncludesItsLeftEdgeButNotItsRightEdge) {
    mouse.hold(kShift);
    grab(window);
    dragTo({0, 700});
    EXPECT_EQ(picture.screenFrame, screen.frame);
    dragTo({-1, 700});
    EXPECT_FALSE(picture.isVisible);

    dragTo({1439, 700});
    EXPECT_EQ(picture.screenFrame, screen.frame);
    dragTo({1440, 700});
    EXPECT_EQ(picture.screenFrame, (Rect{0, 0, 1280, 800})) << "the left edge of the primary display";
}

TEST_F(DragSnapTest, OfOverlappingScreensUnderThePointerTheFirstIsUsed) {
    desktop.addScreen({.frame = screen.frame});
    mouse.hold(kShift);
    grab(window);
    dragTo({1000, 500});
    drop();

    EXPECT_EQ(desktop.frame(window), kRight);
}

TEST_F(DragSnapTest, APointerOnNoScreenHidesTheOverlayAndHasNoTarget) {
    mouse.hold(kShift);
    grab(window);
    dragTo({600, 300});

    dragTo({2000, 300}); // above the primary display

    EXPECT_FALSE(picture.isVisible);
    const Rect dropped = desktop.frame(window);
    drop();
    EXPECT_EQ(desktop.frame(window), dropped);
}

TEST_F(DragSnapTest, MovementsWithoutAPressDoNothing) {
    mouse.hold(kShift);
    moveTo({600, 300});
    mouse.release();
    desktop.advance(1s);

    EXPECT_THAT(desktop.takeRequests(), IsEmpty());
    EXPECT_EQ(picture.windows, 0);
}

TEST_F(DragSnapTest, StartMonitorsEveryKindOfEventOnceAndInOrder) {
    dragSnap->start();
    dragSnap->start();

    EXPECT_THAT(mouse.monitored(), ElementsAre(MouseEventKind::LeftDown, MouseEventKind::LeftDragged,
                                               MouseEventKind::LeftUp, MouseEventKind::Cancelled));
}

TEST_F(DragSnapTest, ARefusedMonitorIsNotKept) {
    mouse.refuse(MouseEventKind::LeftDragged);

    dragSnap->start();

    EXPECT_THAT(mouse.monitored(),
                ElementsAre(MouseEventKind::LeftDown, MouseEventKind::LeftUp, MouseEventKind::Cancelled));
    mouse.hold(kShift);
    grab(window);
    dragTo({1000, 500});
    drop();
    EXPECT_EQ(picture.windows, 0);
}

TEST_F(DragSnapTest, StartingAgainCancelsTheDrag) {
    mouse.hold(kShift);
    grab(window);
    dragTo({1000, 500});

    dragSnap->start();

    EXPECT_FALSE(picture.isVisible);
    const Rect dropped = desktop.frame(window);
    drop();
    EXPECT_EQ(desktop.frame(window), dropped);
}

TEST_F(DragSnapTest, StopRemovesTheMonitorsAndCancelsTheDrag) {
    mouse.hold(kShift);
    grab(window);
    dragTo({1000, 500});

    dragSnap->stop();

    EXPECT_THAT(mouse.monitored(), IsEmpty());
    EXPECT_FALSE(picture.isVisible);
    const Rect dropped = desktop.frame(window);
    drop();
    EXPECT_EQ(desktop.frame(window), dropped);
}

} // namespace
} // namespace tessarel
