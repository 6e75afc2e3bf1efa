// SPDX-License-Identifier: MIT

#include "engine/window_engine.h"

#include "engine/engine_test.h"

namespace tessarel {
namespace {

/// Tests the placement routine and its restore memory.
class WindowEngineTest : public EngineTest {
protected:
    WindowEngineTest() { addScreens(); }

    void place(const Rect& axFrame, const std::optional<Rect>& previous = {}) {
        engine.place(desktop.element(window), desktop.window(window).pid, axFrame, std::nullopt, previous);
    }
    /// Restores the window and returns its frame, or `std::nullopt` when the alert sounds instead.
    std::optional<Rect> restored() {
        const int beeps = desktop.beeps();
        engine.restoreFocused();
        return desktop.beeps() == beeps ? std::optional(desktop.frame(window)) : std::nullopt;
    }

    sim::WindowId window = desktop.openWindow("org.example.editor", kStart);
};

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

/// A window that is larger than its zone, on a desktop that carries out placements late: the frame cannot be
/// read back.
class LatePlacementTest : public WindowEngineTest {
protected:
    LatePlacementTest() {
        desktop.applicationOf(window).refusesSize = true;
        desktop.window(window).axFrame = kLarge;
        placeLate();
    }

    void placeLate() {
        carryOutLate([this] {
            engine.place(desktop.element(window), desktop.window(window).pid, kZone, kUsable, {});
        });
    }

    /// Calls `work` while the desktop carries out placements late.
    template <typename Work>
    void carryOutLate(Work work) {
        desktop.accessibility().setWriteHandler([this](const std::string& /*line*/) {
            desktop.window(window).overrides["AXPosition"] = std::nullopt;
        });
        work();
        desktop.accessibility().setWriteHandler(nullptr);
        desktop.window(window).overrides.clear();
    }

    static constexpr Rect kLarge{-1240, -450, 800, 600};
    static constexpr Rect kZone{-500, -575, 400, 820};
    static constexpr Rect kPulledIn{-900, -575, 800, 600};
};

TEST_F(LatePlacementTest, IsCompletedOnceTheDesktopHasCarriedItOut) {
    ASSERT_EQ(desktop.frame(window), (Rect{-500, -575, 800, 600}));

    desktop.accessibility().correct(window, desktop.frame(window));

    EXPECT_EQ(desktop.frame(window), kPulledIn);
    place(kLeft);
    EXPECT_EQ(restored(), kLarge) << "the restore chain goes on";
}

TEST_F(LatePlacementTest, IsCompletedOnlyOnce) {
    desktop.accessibility().correct(window, desktop.frame(window));
    const Rect moved{-1240, -450, 800, 600};
    desktop.accessibility().setWriteHandler([](const std::string& line) { ADD_FAILURE() << line; });

    desktop.accessibility().correct(window, moved);

    EXPECT_EQ(desktop.frame(window), moved);
}

TEST_F(LatePlacementTest, ContinuesTheChainIfItIsReplacedBeforeItIsCarriedOut) {
    desktop.accessibility().correct(window, desktop.frame(window));
    place(kLeft);
    const Rect left = desktop.frame(window);
    placeLate();
    desktop.window(window).axFrame = left;

    place(kRight);

    EXPECT_EQ(restored(), kLarge);
}

TEST_F(LatePlacementTest, ContinuesTheChainOfADropIfItIsReplacedBeforeItIsCarriedOut) {
    const Rect start{-1240, -450, 700, 500};
    const Rect dropped{-1140, -350, 700, 500};
    desktop.drag(window, dropped);
    carryOutLate([&] { place(kLeft, start); });
    desktop.window(window).axFrame = dropped;

    place(kRight);

    EXPECT_EQ(restored()->origin(), start.origin());
}

TEST_F(LatePlacementTest, ContinuesTheChainIfItIsReplacedBeforeItsFrameIsReported) {
    ASSERT_EQ(desktop.frame(window), (Rect{-500, -575, 800, 600})) << "with another size than requested";

    place(kLeft);

    EXPECT_EQ(restored(), kLarge);
}

TEST_F(LatePlacementTest, ContinuesTheChainIfOnlyTheFirstOfTwoHasBeenCarriedOut) {
    const Rect first = desktop.frame(window);
    desktop.window(window).axFrame = kLarge;
    carryOutLate([this] { place(kLeft); });
    desktop.window(window).axFrame = first;

    place(kRight);

    EXPECT_EQ(restored(), kLarge);
}

TEST_F(LatePlacementTest, IsRestoredLateAndBeginsTheNextChainThere) {
    const Rect placed = desktop.frame(window);
    desktop.window(window).axFrame = kLarge;
    carryOutLate([this] { engine.restoreFocused(); });
    desktop.window(window).axFrame = placed;

    place(kRight);

    EXPECT_EQ(restored(), kLarge);
}

TEST_F(LatePlacementTest, StartsANewChainIfTheUserMovesTheWindowBeforeItIsCarriedOut) {
    const Rect moved{kLarge.x + 200, kLarge.y, kLarge.width, kLarge.height};
    desktop.drag(window, moved);

    place(kRight);

    EXPECT_EQ(restored(), moved);
}

TEST_F(LatePlacementTest, ContinuesTheChainIfItsCompletionIsLateToo) {
    carryOutLate([this] { desktop.accessibility().correct(window, desktop.frame(window)); });
    desktop.accessibility().correct(window, kPulledIn);

    place(kLeft);

    EXPECT_EQ(restored(), kLarge);
}

TEST_F(LatePlacementTest, ContinuesTheChainIfItIsReplacedBeforeItsLateCompletion) {
    const Rect between{-700, -575, 800, 600};
    carryOutLate([&] { desktop.accessibility().correct(window, between); });
    desktop.window(window).axFrame = between;

    place(kLeft);

    EXPECT_EQ(restored(), kLarge);
}

TEST_F(LatePlacementTest, IsPulledBackIfItsCompletionIsLateToo) {
    carryOutLate([this] { desktop.accessibility().correct(window, desktop.frame(window)); });
    ASSERT_EQ(desktop.frame(window), (Rect{-500, -575, 800, 600}));

    desktop.accessibility().correct(window, desktop.frame(window));

    EXPECT_EQ(desktop.frame(window), kPulledIn);
    place(kLeft);
    EXPECT_EQ(restored(), kLarge) << "the restore chain goes on";
}

TEST_F(LatePlacementTest, IsNotPulledBackAgainIfThatIsLateToo) {
    for (int times = 0; times < 2; ++times)
        carryOutLate([this] { desktop.accessibility().correct(window, desktop.frame(window)); });
    ASSERT_EQ(desktop.frame(window), kPulledIn);

    desktop.accessibility().setWriteHandler([](const std::string& line) { ADD_FAILURE() << line; });
    desktop.accessibility().correct(window, {kPulledIn.x, kPulledIn.y, 900, 600});
}

TEST_F(LatePlacementTest, IsRepeatedOnlyOnceForAWindowThatIsElsewhere) {
    carryOutLate([this] { desktop.accessibility().correct(window, desktop.frame(window)); });
    desktop.window(window).axFrame = {-400, -575, 800, 600};

    desktop.accessibility().setWriteHandler([](const std::string& line) { ADD_FAILURE() << line; });
    desktop.accessibility().correct(window, desktop.frame(window));
}

TEST_F(LatePlacementTest, IsLeftAloneIfItHasTheFrameOfItsZone) {
    desktop.applicationOf(window).refusesSize = false;
    placeLate();
    ASSERT_EQ(desktop.frame(window), kZone);

    desktop.accessibility().setWriteHandler([](const std::string& line) { ADD_FAILURE() << line; });
    desktop.accessibility().correct(window, kZone);
}

TEST_F(LatePlacementTest, IsNotCompletedOnceTheWindowIsFullScreen) {
    desktop.window(window).fullScreen = true;
    desktop.accessibility().setWriteHandler([](const std::string& line) { ADD_FAILURE() << line; });

    desktop.accessibility().correct(window, kScreen);
    desktop.window(window).fullScreen = false;
    desktop.accessibility().correct(window, kLarge);
}

TEST_F(LatePlacementTest, IsNotCompletedAfterAnotherPlacement) {
    place(kLeft);
    const Rect left = desktop.frame(window);
    desktop.accessibility().correct(window, left);
    EXPECT_EQ(desktop.frame(window), left);
}

TEST_F(LatePlacementTest, IsNotCompletedByAFrameThatIsReportedDuringAnotherPlacementOrARestore) {
    for (const bool isRestore : {false, true}) {
        placeLate();
        int writes = 0;
        desktop.accessibility().setWriteHandler([&](const std::string& /*line*/) {
            if (++writes == 3) // all of them
                desktop.accessibility().correct(window, desktop.frame(window));
        });
        if (isRestore)
            engine.restoreFocused();
        else
            place(kLeft);
        desktop.accessibility().setWriteHandler(nullptr);

        EXPECT_EQ(desktop.frame(window).origin(), isRestore ? kLarge.origin() : kLeft.origin());
    }
}

TEST_F(LatePlacementTest, IsNotCompletedAfterARestore) {
    EXPECT_EQ(restored(), kLarge);
    desktop.accessibility().correct(window, kLarge);
    EXPECT_EQ(desktop.frame(window), kLarge);
}

/// A window in a zone whose restore the desktop carries out late.
class LateRestoreTest : public LatePlacementTest {
protected:
    LateRestoreTest() {
        desktop.accessibility().correct(window, desktop.frame(window));
        place(kLeft);
        inZone = desktop.frame(window);
        carryOutLate([this] { engine.restoreFocused(); });
    }

    Rect inZone;
};

TEST_F(LateRestoreTest, BeginsTheNextChainAlthoughItHasNotBeenCarriedOut) {
    desktop.window(window).axFrame = inZone;

    place(kRight);

    EXPECT_EQ(restored(), kLarge);
}

TEST_F(LateRestoreTest, DoesNotBeginTheNextChainOfAWindowMovedMeanwhile) {
    const Rect moved{inZone.x + 4, inZone.y, inZone.width, inZone.height};
    desktop.drag(window, moved);

    place(kRight);

    EXPECT_EQ(restored(), moved);
}

TEST_F(LateRestoreTest, DoesNotBeginTheNextChainOfAWindowMovedAfterIt) {
    desktop.accessibility().correct(window, kLarge);
    desktop.drag(window, inZone);

    place(kRight);

    EXPECT_EQ(restored(), inZone);
}

TEST_F(LateRestoreTest, IsRepeatedOnceForAWindowThatTakesAnotherFrame) {
    const Rect other{kLarge.x + 5, kLarge.y + 20, kLarge.width, kLarge.height};
    carryOutLate([&] { desktop.accessibility().correct(window, other); });
    EXPECT_EQ(desktop.frame(window), kLarge);

    desktop.accessibility().correct(window, other);

    EXPECT_EQ(desktop.frame(window), other);
    EXPECT_EQ(restored(), std::nullopt);
}

TEST_F(LateRestoreTest, BeginsTheNextChainAlthoughItsRepetitionIsLateToo) {
    const Rect other{kLarge.x + 5, kLarge.y + 20, kLarge.width, kLarge.height};
    carryOutLate([&] { desktop.accessibility().correct(window, other); });
    desktop.window(window).axFrame = other;

    place(kRight);

    EXPECT_EQ(restored(), kLarge);
}

TEST_F(LateRestoreTest, IsNotRepeatedOnceTheWindowIsFullScreen) {
    desktop.window(window).fullScreen = true;
    desktop.accessibility().setWriteHandler([](const std::string& line) { ADD_FAILURE() << line; });

    desktop.accessibility().correct(window, kScreen);
}

TEST_F(LateRestoreTest, IsFollowedByNothingToRestore) {
    desktop.window(window).axFrame = inZone;

    EXPECT_EQ(restored(), std::nullopt);
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
