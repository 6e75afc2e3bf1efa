// SPDX-License-Identifier: MIT

#include "engine/window_engine.h"
#include "engine/window_engine_test.h"

#include <optional>
#include <string>

namespace tessarel {
namespace {

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

TEST_F(LatePlacementTest, ContinuesTheChainIfTheWindowChangesItsSizeBeforeItIsPulledBack) {
    for (int times = 0; times < 2; ++times)
        carryOutLate([this] { desktop.accessibility().correct(window, desktop.frame(window)); });
    desktop.window(window).axFrame = {kZone.x, kZone.y, 900, 600};

    place(kLeft);

    EXPECT_EQ(restored()->origin(), kLarge.origin());
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

TEST_F(LatePlacementTest, IsCompletedAfterAnotherPlacementOrARestoreThatTheDesktopRefuses) {
    for (const bool isRestore : {false, true}) {
        placeLate();
        desktop.window(window).isTiled = true;
        if (isRestore)
            engine.restoreFocused();
        else
            place(kLeft);
        desktop.window(window).isTiled = false;

        desktop.accessibility().correct(window, desktop.frame(window));

        EXPECT_EQ(desktop.frame(window), kPulledIn);
    }
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

} // namespace
} // namespace tessarel
