// SPDX-License-Identifier: MIT

#include "snap/snap_test.h"

#include <gmock/gmock.h>

namespace tessarel {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Tests faults in the middle of a drag, after which the next drag must work.
class DragSnapFaultsTest : public SnapTest {
protected:
    DragSnapFaultsTest() { mouse.hold(kShift); }

    void beginDrag() {
        grab(window);
        dragTo({1000, 500});
        ASSERT_TRUE(picture.isVisible);
    }
    void expectThatTheNextDragWorks() {
        desktop.drag(window, kStart);
        grab(window);
        dragTo({100, 500});
        drop();
        EXPECT_EQ(desktop.frame(window), kLeft);
    }
};

TEST_F(DragSnapFaultsTest, ALostReleaseIsNoticedAtTheNextMovement) {
    beginDrag();
    mouse.loseRelease();

    dragTo({1001, 500});

    EXPECT_FALSE(picture.isVisible);
    dragTo({1002, 500});
    EXPECT_FALSE(picture.isVisible) << "the button is up";
    desktop.advance(1s);
    expectThatTheNextDragWorks();
}

TEST_F(DragSnapFaultsTest, ASecondPressWithoutAReleaseStartsOver) {
    beginDrag();

    moveTo({1200, 850});
    mouse.press();

    EXPECT_FALSE(picture.isVisible);
    drop();
    desktop.advance(1s);
    EXPECT_THAT(desktop.takeWrites(), IsEmpty());
    expectThatTheNextDragWorks();
}

TEST_F(DragSnapFaultsTest, AWindowClosedInTheMiddleOfADragIsNotPlaced) {
    beginDrag();

    desktop.close(window);
    EXPECT_FALSE(picture.isVisible);

    dragTo({1001, 500});
    EXPECT_FALSE(picture.isVisible);
    (void)desktop.takeRequests();
    drop();
    EXPECT_THAT(desktop.takeRequests(), IsEmpty());
    window = desktop.openWindow("org.example.viewer", kStart);
    expectThatTheNextDragWorks();
}

TEST_F(DragSnapFaultsTest, AnotherWindowThatClosesInTheMiddleOfADragDoesNotMatter) {
    const auto other = desktop.openWindow("org.example.viewer", at({900, 300, 200, 100}));
    beginDrag();

    desktop.close(other);

    EXPECT_TRUE(picture.isVisible);
    drop();
    EXPECT_EQ(desktop.frame(window), kRight);
}

TEST_F(DragSnapFaultsTest, TheWindowOfAnEarlierDragMayCloseDuringTheNextOne) {
    beginDrag();
    drop();
    const auto earlier = window;
    window = desktop.openWindow("org.example.viewer", at({900, 100, 400, 300}));
    grab(window, {200, 10});
    dragTo({1000, 500});
    ASSERT_TRUE(picture.isVisible);

    desktop.close(earlier);

    EXPECT_TRUE(picture.isVisible);
    drop();
    EXPECT_EQ(desktop.frame(window), kRight);
}

TEST_F(DragSnapFaultsTest, WindowsAreNotObservedBetweenDrags) {
    beginDrag();
    EXPECT_EQ(desktop.accessibility().closeObservers(), 1U);

    mouse.release();

    EXPECT_EQ(desktop.accessibility().closeObservers(), 0U);
}

TEST_F(DragSnapFaultsTest, AProgramMayEndAtAnyPointOfAPress) {
    for (int requests = 0; requests < 8; ++requests) {
        const ProcessId dying = desktop.launch({.bundleIdentifier = "org.example.dying"});
        window = desktop.openWindow(dying, {.axFrame = kStart});
        desktop.application(dying).requestsUntilDeath = requests;

        grab(window);
        dragTo({1000, 500});
        drop();

        EXPECT_FALSE(picture.isVisible) << requests;
        EXPECT_EQ(desktop.accessibility().closeObservers(), 0U) << requests;
        desktop.kill(dying);
    }
    EXPECT_THAT(desktop.takeWrites(), IsEmpty());
}

TEST_F(DragSnapFaultsTest, AProgramThatEndsInTheMiddleOfADragIsNotRemembered) {
    beginDrag();
    desktop.kill(desktop.window(window).pid);
    EXPECT_FALSE(picture.isVisible);

    drop();

    EXPECT_TRUE(settings.appZones.empty());
    window = desktop.openWindow("org.example.viewer", kStart);
    expectThatTheNextDragWorks();
}

TEST_F(DragSnapFaultsTest, AProgramThatEndsBetweenReleaseAndPlacementIsNotRemembered) {
    beginDrag();
    mouse.release();
    desktop.kill(desktop.window(window).pid);

    desktop.advance(30ms);

    EXPECT_TRUE(settings.appZones.empty());
}

TEST_F(DragSnapFaultsTest, AWindowClosedBeforeItIsSeenToMoveShowsNoOverlay) {
    grab(window);
    desktop.close(window);

    dragTo({1000, 500});
    drop();

    EXPECT_EQ(picture.windows, 0);
}

TEST_F(DragSnapFaultsTest, AProgramThatHangsInTheMiddleOfADragDoesNotDelayTheOverlay) {
    beginDrag();
    desktop.applicationOf(window).answerTime = sim::SimApplication::kTimeLimit;
    const auto before = desktop.mainQueue().now();

    moveTo({100, 500});
    mouse.release();

    EXPECT_EQ(desktop.mainQueue().now(), before);
    EXPECT_FALSE(picture.isVisible);
    desktop.advance(30ms);
    desktop.applicationOf(window).answerTime = {};
    expectThatTheNextDragWorks();
}

TEST_F(DragSnapFaultsTest, AProgramThatHangsBeforeTheMoveIsSeenDelaysEachReadByAQuarterOfASecond) {
    grab(window);
    desktop.applicationOf(window).answerTime = sim::SimApplication::kTimeLimit;
    desktop.advance(30ms);
    const auto before = desktop.mainQueue().now();

    moveTo({1000, 500});

    EXPECT_EQ(desktop.mainQueue().now() - before, 250ms);
    EXPECT_FALSE(picture.isVisible);
}

TEST_F(DragSnapFaultsTest, AWindowThatCannotBeReadTwiceInARowIsGivenUp) {
    grab(window);
    desktop.applicationOf(window).answerTime = sim::SimApplication::kTimeLimit;
    dragTo({1000, 500});
    dragTo({1001, 500});
    desktop.applicationOf(window).answerTime = {};
    (void)desktop.takeRequests();

    dragTo({1002, 500});

    EXPECT_FALSE(picture.isVisible);
    EXPECT_THAT(desktop.takeRequests(), IsEmpty());
    drop();
    expectThatTheNextDragWorks();
}

TEST_F(DragSnapFaultsTest, AWindowThatCanBeReadInBetweenIsNotGivenUp) {
    grab(window);
    desktop.drag(window, kStart);
    for (const double x : {521.0, 522.0, 523.0}) {
        desktop.applicationOf(window).answerTime = sim::SimApplication::kTimeLimit;
        dragTo({x, 160});
        desktop.applicationOf(window).answerTime = {};
        dragTo({x, 161});
    }

    dragTo({1000, 500});

    EXPECT_EQ(labels(), "1[2]");
}

TEST_F(DragSnapFaultsTest, AfterAFailedReadTheFrameIsReadAgainExactlyThirtyMillisecondsLater) {
    grab(window);
    desktop.drag(window, kStart);
    desktop.window(window).overrides["AXPosition"] = std::nullopt;
    desktop.advance(30ms);
    moveTo({521, 160});
    desktop.window(window).overrides.clear();
    (void)desktop.takeRequests();

    desktop.advance(30ms - 1ns);
    moveTo({522, 160});
    EXPECT_THAT(desktop.takeRequests(), IsEmpty());

    desktop.advance(1ns);
    moveTo({600, 160});
    EXPECT_EQ(labels(), "[1]2");
}

TEST_F(DragSnapFaultsTest, TheTimeToTheNextReadBeginsWithTheReadThatWaitsForTheProgram) {
    grab(window);
    desktop.applicationOf(window).answerTime = 20ms;
    desktop.advance(30ms);
    moveTo({521, 160}); // reads the position and the size, which takes 40 ms
    (void)desktop.takeRequests();

    moveTo({522, 160});

    EXPECT_FALSE(desktop.takeRequests().empty());
}

TEST_F(DragSnapFaultsTest, AFailedReadOfAnEarlierPressDoesNotCount) {
    for (int press = 0; press < 2; ++press) {
        grab(window);
        desktop.drag(window, kStart);
        desktop.applicationOf(window).answerTime = sim::SimApplication::kTimeLimit;
        dragTo({521, 160});
        desktop.applicationOf(window).answerTime = {};
        if (press == 0)
            mouse.release();
    }

    dragTo({1000, 500});

    EXPECT_EQ(labels(), "1[2]");
}

TEST_F(DragSnapFaultsTest, TheOverlayOfARemovedDisplayIsHiddenAtTheNextMovement) {
    const auto second = desktop.addScreen({.frame = {-2560, 500, 1120, 900}});
    grab(window);
    dragTo({-500, 500});
    ASSERT_EQ(picture.screenFrame, second.frame);
    desktop.removeScreen(second.id);

    dragTo({-501, 500});
    EXPECT_FALSE(picture.isVisible);

    dragTo({1000, 500});
    EXPECT_EQ(picture.screenFrame, screen.frame);
    drop();
    EXPECT_EQ(desktop.frame(window), kRight);
}

TEST_F(DragSnapFaultsTest, WithoutAnyDisplayNothingIsShownOrPlaced) {
    beginDrag();
    for (const Screen& one : desktop.displays().screens())
        desktop.removeScreen(one.id);

    moveTo({1001, 500});
    drop();

    EXPECT_FALSE(picture.isVisible);
    EXPECT_THAT(desktop.takeWrites(), IsEmpty());
}

TEST_F(DragSnapFaultsTest, SettingsChangedInTheMiddleOfADragTakeEffectAtTheNextMovement) {
    beginDrag();
    settings.zones = zones({kWhole, {true, 50, 0, 50, 50}});
    settings.dragTrigger = "always";
    settings.gap = 10;
    mouse.hold(0);

    dragTo({1001, 300});

    EXPECT_EQ(labels(), "1[2]");
    const Rect target = geo.zoneFrame(settings.zones[1], geo.axVisible(screen));
    drop();
    EXPECT_EQ(desktop.frame(window), target);
    EXPECT_EQ(settings.appZones.at("org.example.editor"), 1);
}

TEST_F(DragSnapFaultsTest, SwitchingOffTakesEffectAtTheNextPress) {
    beginDrag();
    settings.dragEnabled = false;
    runtime.paused = true;

    dragTo({100, 500});
    EXPECT_EQ(labels(), "[1]2");
    drop();
    EXPECT_EQ(desktop.frame(window), kLeft);

    grab(window);
    dragTo({1000, 500});
    EXPECT_FALSE(picture.isVisible);
}

TEST_F(DragSnapFaultsTest, RemovingTheZonesBeforeTheReleaseDoesNotChangeTheTarget) {
    beginDrag();
    settings.zones.clear();

    drop();

    EXPECT_EQ(desktop.frame(window), kRight);
}

TEST_F(DragSnapFaultsTest, DestroyingDragSnapInTheMiddleOfADragHidesTheOverlay) {
    beginDrag();

    dragSnap.reset();

    EXPECT_FALSE(picture.isVisible);
    EXPECT_THAT(mouse.monitored(), IsEmpty());
    drop();
    EXPECT_THAT(desktop.takeWrites(), IsEmpty());
}

TEST_F(DragSnapFaultsTest, DestroyingDragSnapBetweenReleaseAndPlacementCancelsThePlacement) {
    beginDrag();
    mouse.release();
    const Rect dropped = desktop.frame(window);

    dragSnap.reset();
    desktop.advance(1s);

    EXPECT_EQ(desktop.frame(window), dropped);
}

TEST_F(DragSnapFaultsTest, ANewDragBetweenReleaseAndPlacementLeavesThePlacementAlone) {
    beginDrag();
    mouse.release();
    moveTo({10, 890});
    mouse.press();

    desktop.advance(30ms);

    EXPECT_EQ(desktop.frame(window), kRight);
}

TEST_F(DragSnapFaultsTest, ADragBegunBeforeTheStartIsIgnored) {
    dragSnap->stop();
    grab(window);
    moveTo({600, 300});

    dragSnap->start();
    dragTo({1000, 500});
    EXPECT_EQ(picture.windows, 0);
    drop();

    expectThatTheNextDragWorks();
}

TEST_F(DragSnapFaultsTest, AWindowThatRefusesThePlacementStaysWhereItWasDropped) {
    beginDrag();
    desktop.applicationOf(window).refusesPosition = true;
    desktop.applicationOf(window).refusesSize = true;
    const Rect dropped = desktop.frame(window);

    drop();

    EXPECT_EQ(desktop.frame(window), dropped);
    EXPECT_FALSE(picture.isVisible);
}

} // namespace
} // namespace tessarel
