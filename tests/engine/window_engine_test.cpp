#include "engine/window_engine.h"

#include "engine/engine_test.h"

namespace tessarel {
namespace {

/// The placement routine and its memory.
class WindowEngineTest : public EngineTest {
protected:
    static constexpr Rect kStart{200, 150, 640, 480};

    WindowEngineTest() { addScreen(); }

    void place(const Rect& axFrame, const std::optional<Rect>& previous = {}) {
        engine.place(desktop.element(window), desktop.window(window).pid, axFrame, std::nullopt, previous);
    }
    /// Where restoring takes the window; empty when there is nothing to restore.
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
    ASSERT_EQ(desktop.frame(window), (Rect{725, 33, 707, 859}));

    engine.restoreFocused();

    EXPECT_EQ(desktop.frame(window), kStart);
    EXPECT_EQ(desktop.beeps(), 0);
}

TEST_F(WindowEngineTest, ASecondRestoreFindsNothing) {
    place({0, 25, 720, 875});
    EXPECT_EQ(restored(), kStart);

    EXPECT_EQ(restored(), std::nullopt);
    EXPECT_EQ(desktop.beeps(), 1);
}

TEST_F(WindowEngineTest, RestoringForgetsThePlacementToo) {
    // The window stands in its zone before it is ever placed: a placement remembered beyond the restore
    // would make the next one look like part of the old chain.
    const Rect zone = geo.zoneFrame(kLeftHalf, {0, 25, 1440, 875});
    desktop.drag(window, zone);
    place(zone);
    EXPECT_EQ(restored(), zone);

    place({720, 25, 720, 875});

    EXPECT_EQ(restored(), zone);
}

TEST_F(WindowEngineTest, RestoringAWindowNeverPlacedSoundsTheAlert) {
    EXPECT_EQ(restored(), std::nullopt);

    EXPECT_EQ(desktop.beeps(), 1);
    EXPECT_EQ(desktop.frame(window), kStart);
    EXPECT_TRUE(desktop.takeWrites().empty());
}

TEST_F(WindowEngineTest, AWindowMovedByHandStartsANewChain) {
    place({0, 25, 720, 875});
    desktop.drag(window, {10, 25, 720, 875});
    place({720, 25, 720, 875});

    EXPECT_EQ(restored(), (Rect{10, 25, 720, 875}));
}

TEST_F(WindowEngineTest, ThreePointsAreNoMove) {
    for (const Rect& nudged :
         {Rect{3, 25, 720, 875}, Rect{0, 28, 720, 875}, Rect{0, 25, 717, 875}, Rect{-3, 22, 723, 872}}) {
        desktop.drag(window, kStart);
        place({0, 25, 720, 875});
        desktop.drag(window, nudged);
        place({720, 25, 720, 875});
        EXPECT_EQ(restored(), kStart);
    }
}

TEST_F(WindowEngineTest, MoreThanThreePointsAreAMove) {
    for (const Rect& moved :
         {Rect{3.5, 25, 720, 875}, Rect{0, 29, 720, 875}, Rect{0, 25, 716, 875}, Rect{0, 25, 720, 879}}) {
        desktop.drag(window, kStart);
        place({0, 25, 720, 875});
        desktop.drag(window, moved);
        place({720, 25, 720, 875});
        EXPECT_EQ(restored(), moved);
    }
}

TEST_F(WindowEngineTest, ARefusedSizeStillCountsAsUnmoved) {
    desktop.applicationOf(window).refusesSize = true;
    place({0, 25, 720, 875});
    ASSERT_EQ(desktop.frame(window), (Rect{0, 25, 640, 480}));
    place({720, 25, 720, 875});

    EXPECT_EQ(restored(), kStart);
}

TEST_F(WindowEngineTest, TheFrameBeforeMayBeHandedOver) {
    desktop.drag(window, {500, 300, 640, 480});

    place({0, 25, 720, 875}, kStart);

    EXPECT_EQ(restored(), kStart);
}

TEST_F(WindowEngineTest, AFrameHandedOverIsComparedWithTheLastPlacement) {
    place({0, 25, 720, 875});

    place({720, 25, 720, 875}, Rect{2, 25, 720, 875});

    EXPECT_EQ(restored(), kStart);
}

TEST_F(WindowEngineTest, WithoutAReadableFrameNothingIsRememberedForRestoring) {
    desktop.window(window).overrides["AXSize"] = std::nullopt;
    place({0, 25, 720, 875});
    EXPECT_EQ(desktop.takeWrites().size(), 3U);

    desktop.window(window).overrides.clear();
    EXPECT_EQ(restored(), std::nullopt);
}

TEST_F(WindowEngineTest, WithoutAReadableFrameAfterwardsTheOneAskedForIsRemembered) {
    desktop.window(window).overrides["AXPosition"] = std::nullopt;
    place({0, 25, 720, 875}, kStart);
    desktop.window(window).overrides.clear();

    place({720, 25, 720, 875});

    EXPECT_EQ(restored(), kStart);
}

TEST_F(WindowEngineTest, AFrameThatCannotBeExpressedLeavesTheWindowAndIsAChainAllTheSame) {
    place(Rect::null());
    EXPECT_EQ(desktop.frame(window), kStart);

    place({720, 25, 720, 875});

    EXPECT_EQ(restored(), kStart);
}

TEST_F(WindowEngineTest, WindowsAreRememberedEachForItself) {
    const auto other = desktop.openWindow("org.example.editor", {50, 60, 300, 200});
    engine.snapFocused(kLeftHalf, {});
    desktop.focus(window);
    engine.snapFocused(kRightHalf, {});

    engine.restoreFocused();
    EXPECT_EQ(desktop.frame(window), kStart);
    EXPECT_EQ(desktop.frame(other), (Rect{0, 25, 720, 875}));

    desktop.focus(other);
    engine.restoreFocused();
    EXPECT_EQ(desktop.frame(other), (Rect{50, 60, 300, 200}));
}

TEST_F(WindowEngineTest, RestoringDoesNotPullTheWindowIntoTheScreen) {
    const Rect outside{1200, 700, 640, 480};
    desktop.drag(window, outside);
    engine.snapFocused(kLeftHalf, {});

    engine.restoreFocused();

    EXPECT_EQ(desktop.frame(window), outside);
}

TEST_F(WindowEngineTest, TheSameFrameIsReadWrittenAndReadInThisOrder) {
    place({0, 25, 720, 875});

    const std::string app = "application " + std::to_string(desktop.window(window).pid);
    EXPECT_EQ(
        desktop.takeRequests(),
        (Lines{"read " + name(window) + " AXPosition", "read " + name(window) + " AXSize",
               "read " + app + " AXEnhancedUserInterface", "write " + name(window) + " AXSize 720x875",
               "write " + name(window) + " AXPosition 0,25", "write " + name(window) + " AXSize 720x875",
               "read " + name(window) + " AXPosition", "read " + name(window) + " AXSize"}));
}

TEST_F(WindowEngineTest, TheKeyIsThatOfTheElement) {
    EXPECT_EQ(engine.key(desktop.element(window)), desktop.accessibility().key(desktop.element(window)));
}

TEST_F(WindowEngineTest, FramesAreAlikeWithinTheTolerance) {
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

} // namespace
} // namespace tessarel
