// SPDX-License-Identifier: MIT

#include "engine/window_engine.h"

#include "engine/window_engine_test.h"

namespace tessarel {
namespace {

TEST_F(WindowEngineTest, RestoreGoesBackToTheFrameBeforeTheFirstSnap) {
    settings.gap = 10;
    settings.margin = 8;
    engine.snapFocused(kLeftHalf, 0);
    engine.snapFocused(kRightHalf, 1);
    ASSERT_EQ(desktop.frame(window), (Rect{-745, -567, 637, 804}));

    engine.restoreFocused();

    EXPECT_EQ(desktop.frame(window), kStart);
    EXPECT_EQ(desktop.beeps(), 0);
}

TEST_F(WindowEngineTest, ASecondRestoreHasNothingToRestore) {
    place(kLeft);
    EXPECT_EQ(restored(), kStart);

    EXPECT_EQ(restored(), std::nullopt);
    EXPECT_EQ(desktop.beeps(), 1);
}

TEST_F(WindowEngineTest, RestoringForgetsTheLastPlacement) {
    // The window has the frame of its zone before its first placement. If the last placement were kept after
    // the restore, the next one would look like part of the old chain.
    desktop.drag(window, kLeft);
    place(kLeft);
    EXPECT_EQ(restored(), kLeft);

    place(kRight);

    EXPECT_EQ(restored(), kLeft);
}

TEST_F(WindowEngineTest, RestoringAWindowNeverPlacedSoundsTheAlert) {
    EXPECT_EQ(restored(), std::nullopt);

    EXPECT_EQ(desktop.beeps(), 1);
    EXPECT_EQ(desktop.frame(window), kStart);
    EXPECT_TRUE(desktop.takeWrites().empty());
}

TEST_F(WindowEngineTest, AWindowMovedByHandStartsANewChain) {
    place(kLeft);
    const Rect moved{kLeft.x + 10, kLeft.y, kLeft.width, kLeft.height};
    desktop.drag(window, moved);
    place(kRight);

    EXPECT_EQ(restored(), moved);
}

TEST_F(WindowEngineTest, ADifferenceOfThreePointsContinuesTheChain) {
    for (const Rect& nudged : {Rect{-1397, -575, 650, 820}, Rect{-1400, -572, 650, 820},
                               Rect{-1400, -575, 647, 820}, Rect{-1403, -578, 653, 817}}) {
        desktop.drag(window, kStart);
        place(kLeft);
        desktop.drag(window, nudged);
        place(kRight);
        EXPECT_EQ(restored(), kStart);
    }
}

TEST_F(WindowEngineTest, ADifferenceOfMoreThanThreePointsStartsANewChain) {
    for (const Rect& moved : {Rect{-1396.5, -575, 650, 820}, Rect{-1400, -579, 650, 820},
                              Rect{-1400, -575, 646, 820}, Rect{-1400, -575, 650, 824}}) {
        desktop.drag(window, kStart);
        place(kLeft);
        desktop.drag(window, moved);
        place(kRight);
        EXPECT_EQ(restored(), moved);
    }
}

TEST_F(WindowEngineTest, AFrameThatTheProgramCorrectsContinuesTheChain) {
    place(kLeft);
    desktop.accessibility().correct(window, {-1400, -575, 650, 832});
    place(kRight);

    EXPECT_EQ(restored(), kStart);
}

TEST_F(WindowEngineTest, AWindowThatGrowsAndIsThenMovedBackByTheWindowManagerContinuesTheChain) {
    place(kLeft);
    desktop.accessibility().correct(window, {-1400, -575, 650, 832});
    desktop.accessibility().correct(window, {-1400, -587, 650, 832});
    place(kRight);

    EXPECT_EQ(restored(), kStart);
}

TEST_F(WindowEngineTest, AWindowThatGrowsInBothDirectionsContinuesTheChain) {
    place(kLeft);
    desktop.accessibility().correct(window, {-1405, -582, 660, 832});
    place(kRight);

    EXPECT_EQ(restored(), kStart);
}

TEST_F(WindowEngineTest, AWindowMovedByHandAfterACorrectionStartsANewChain) {
    place(kLeft);
    desktop.accessibility().correct(window, {-1400, -575, 650, 832});
    desktop.drag(window, kLeft);
    place(kRight);

    EXPECT_EQ(restored(), kLeft);
}

TEST_F(WindowEngineTest, AMoveWithoutTheMouseIsNoCorrection) {
    for (const Rect& moved : {Rect{-1396, -575, 650, 820}, Rect{-1404, -575, 650, 820},
                              Rect{-1400, -571, 650, 820}, Rect{-1400, -579, 650, 820}}) {
        desktop.drag(window, kStart);
        place(kLeft);
        desktop.accessibility().correct(window, moved);
        place(kRight);
        EXPECT_EQ(restored(), moved);
    }
}

TEST_F(WindowEngineTest, ACorrectionAfterRestoringStartsNoChain) {
    place(kLeft);
    EXPECT_EQ(restored(), kStart);
    const Rect corrected{kStart.x, kStart.y, kStart.width, kStart.height + 12};
    desktop.accessibility().correct(window, corrected);

    place(kRight);

    EXPECT_EQ(restored(), corrected);
}

TEST_F(WindowEngineTest, ARefusedSizeStillCountsAsUnmoved) {
    desktop.applicationOf(window).refusesSize = true;
    place(kLeft);
    ASSERT_EQ(desktop.frame(window), (Rect{-1400, -575, 640, 480}));
    place(kRight);

    EXPECT_EQ(restored(), kStart);
}

TEST_F(WindowEngineTest, ThePreviousFrameCanBePassedIn) {
    desktop.drag(window, at({500, 300, 640, 480}));

    place(kLeft, kStart);

    EXPECT_EQ(restored(), kStart);
}

TEST_F(WindowEngineTest, APreviousFrameIsComparedWithTheLastPlacement) {
    place(kLeft);

    place(kRight, Rect{kLeft.x + 2, kLeft.y, kLeft.width, kLeft.height});

    EXPECT_EQ(restored(), kStart);
}

TEST_F(WindowEngineTest, WithoutAReadableFrameNothingIsRememberedForRestoring) {
    desktop.window(window).overrides["AXSize"] = std::nullopt;
    place(kLeft);
    EXPECT_EQ(desktop.takeWrites().size(), 3U);

    desktop.window(window).overrides.clear();
    EXPECT_EQ(restored(), std::nullopt);
}

TEST_F(WindowEngineTest, WithoutAReadableFrameAfterwardsTheRequestedFrameIsRemembered) {
    desktop.window(window).overrides["AXPosition"] = std::nullopt;
    place(kLeft, kStart);
    desktop.window(window).overrides.clear();

    place(kRight);

    EXPECT_EQ(restored(), kStart);
}

TEST_F(WindowEngineTest, AFrameThatCannotBeExpressedLeavesTheWindowButStartsAChain) {
    place(Rect::null());
    EXPECT_EQ(desktop.frame(window), kStart);

    place(kRight);

    EXPECT_EQ(restored(), kStart);
}

TEST_F(WindowEngineTest, EachWindowHasItsOwnRestoreMemory) {
    const auto other = desktop.openWindow("org.example.editor", at({50, 60, 300, 200}));
    engine.snapFocused(kLeftHalf, {});
    desktop.focus(window);
    engine.snapFocused(kRightHalf, {});

    engine.restoreFocused();
    EXPECT_EQ(desktop.frame(window), kStart);
    EXPECT_EQ(desktop.frame(other), kLeft);

    desktop.focus(other);
    engine.restoreFocused();
    EXPECT_EQ(desktop.frame(other), at({50, 60, 300, 200}));
}

TEST_F(WindowEngineTest, RestoringDoesNotPullTheWindowIntoTheScreen) {
    const Rect outside = at({1200, 700, 640, 480});
    desktop.drag(window, outside);
    engine.snapFocused(kLeftHalf, {});

    engine.restoreFocused();

    EXPECT_EQ(desktop.frame(window), outside);
}

TEST_F(WindowEngineTest, PlaceReadsTheFrameThenWritesItThenReadsItBack) {
    place(kLeft);

    const std::string app = "application " + std::to_string(desktop.window(window).pid);
    EXPECT_EQ(desktop.takeRequests(),
              (Lines{"read " + name(window) + " AXPosition", "read " + name(window) + " AXSize",
                     "read " + app + " AXEnhancedUserInterface", "write " + name(window) + " AXSize 650x820",
                     "write " + name(window) + " AXPosition -1400,-575",
                     "write " + name(window) + " AXSize 650x820", "read " + name(window) + " AXPosition",
                     "read " + name(window) + " AXSize"}));
}

TEST_F(WindowEngineTest, TheKeyOfAWindowIsTheKeyOfItsElement) {
    EXPECT_EQ(engine.key(desktop.element(window)), desktop.accessibility().key(desktop.element(window)));
}

TEST_F(WindowEngineTest, FramesAreEqualWithinTheTolerance) {
    EXPECT_TRUE(WindowEngine::approx({0, 0, 100, 100}, {3, -3, 97, 103}));
    EXPECT_FALSE(WindowEngine::approx({0, 0, 100, 100}, {3.001, 0, 100, 100}));
    EXPECT_TRUE(WindowEngine::approx({0, 0, 100, 100}, {10, 0, 100, 100}, 10));
    EXPECT_TRUE(WindowEngine::approx({100, 100, -100, -100}, {0, 0, 100, 100}, 0));
}

TEST_F(WindowEngineTest, OnlyAnExactIdentifierIsIgnored) {
    settings.ignoredApps = {"org.example.editor"};

    EXPECT_TRUE(engine.isIgnored(RunningApplication{1, "org.example.editor"}));
    EXPECT_FALSE(engine.isIgnored(RunningApplication{1, "org.example.Editor"}));
    EXPECT_FALSE(engine.isIgnored(RunningApplication{1, "org.example.editor2"}));
    EXPECT_FALSE(engine.isIgnored(RunningApplication{1, std::nullopt}));
    EXPECT_FALSE(engine.isIgnored(std::nullopt));
}

TEST_F(WindowEngineTest, AnApplicationIsIgnoredUnderAnyOfItsNames) {
    settings.ignoredApps = {"Editor"};

    EXPECT_TRUE(engine.isIgnored(
        RunningApplication{.bundleIdentifier = "org.example.editor", .otherNames = {"edit", "Editor"}}));
    EXPECT_FALSE(engine.isIgnored(
        RunningApplication{.bundleIdentifier = "org.example.editor", .otherNames = {"edit"}}));
}

} // namespace
} // namespace tessarel
