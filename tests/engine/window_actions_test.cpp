// SPDX-License-Identifier: MIT

#include "engine/engine_test.h"
#include "engine/window_engine.h"

#include <functional>

namespace tessarel {
namespace {

/// Tests the actions on the focused window.
class WindowActionsTest : public EngineTest {
protected:
    WindowActionsTest() { addScreens(); }

    /// Returns all actions on the focused window. The last one needs the second display of the fixture.
    [[nodiscard]] std::vector<std::function<void()>> actions() {
        return {[this] { engine.snapFocused(kRightHalf, 1); }, [this] { engine.centerFocused(); },
                [this] { engine.restoreFocused(); }, [this] { engine.moveFocusedToDisplay(1); }};
    }
    /// Runs all actions and expects no write, no alert sound, and nothing remembered or saved.
    void expectAllActionsEndSilently() {
        for (const auto& action : actions())
            action();
        EXPECT_TRUE(desktop.takeWrites().empty());
        EXPECT_EQ(desktop.beeps(), 0);
        EXPECT_TRUE(settings.appZones.empty());
        EXPECT_EQ(desktop.preferencesStorage().writes, 0);
    }

    sim::WindowId window = desktop.openWindow("org.example.editor", kStart);
};

TEST_F(WindowActionsTest, WithoutAFocusedWindowActionsEndSilently) {
    desktop.deactivateAll();
    expectAllActionsEndSilently();
}

TEST_F(WindowActionsTest, ThisProgramsOwnWindowIsNotActedOn) {
    desktop.openOwnWindow({100, 100, 820, 540});
    expectAllActionsEndSilently();
}

TEST_F(WindowActionsTest, AnIgnoredApplicationIsNotActedOn) {
    settings.ignoredApps = {"org.example.other", "org.example.editor"};
    expectAllActionsEndSilently();
}

TEST_F(WindowActionsTest, AMinimizedWindowIsNotActedOn) {
    desktop.window(window).minimized = true;
    expectAllActionsEndSilently();
}

TEST_F(WindowActionsTest, AFullScreenWindowIsNotActedOn) {
    desktop.window(window).fullScreen = true;
    expectAllActionsEndSilently();
}

TEST_F(WindowActionsTest, AnElementThatIsNotAWindowIsNotActedOn) {
    desktop.window(window).role = "AXUnknown";
    expectAllActionsEndSilently();
}

TEST_F(WindowActionsTest, AnUnresponsiveApplicationIsNotActedOn) {
    desktop.applicationOf(window).answerTime = sim::SimApplication::kTimeLimit;
    expectAllActionsEndSilently();
}

TEST_F(WindowActionsTest, AnUnreadableWindowIsNotActedOn) {
    desktop.window(window).overrides["AXPosition"] = std::nullopt;

    engine.snapFocused(kRightHalf, 1);
    engine.centerFocused();
    engine.moveFocusedToDisplay(1);

    EXPECT_TRUE(desktop.takeWrites().empty());
    EXPECT_EQ(desktop.beeps(), 0);
}

TEST_F(WindowActionsTest, RestoringNeedsNoReadableFrame) {
    engine.snapFocused(kRightHalf, 1);
    desktop.window(window).overrides["AXPosition"] = std::nullopt;

    engine.restoreFocused();

    EXPECT_EQ(desktop.frame(window), kStart);
}

TEST_F(WindowActionsTest, ASlowApplicationIsActedOn) {
    desktop.applicationOf(window).answerTime = std::chrono::milliseconds(300);

    engine.snapFocused(kRightHalf, 1);

    EXPECT_EQ(desktop.frame(window), kRight);
}

TEST_F(WindowActionsTest, AnApplicationMayEndAtAnyPointOfASnap) {
    for (int requests = 0; requests < 20; ++requests) {
        const ProcessId dying =
            desktop.launch({.bundleIdentifier = "org.example.dying", .requestsUntilDeath = requests});
        desktop.openWindow(dying, {.axFrame = kStart, .minimum = {900, 1}});
        engine.snapFocused(kRightHalf, 1);
        engine.restoreFocused();
        desktop.kill(dying);
    }
    desktop.focus(window);
    engine.snapFocused(kRightHalf, 1);
    EXPECT_EQ(desktop.frame(window), kRight);
}

TEST_F(WindowActionsTest, SnapUsesTheScreenThatShowsMostOfTheWindow) {
    desktop.drag(window, {-310, 0, 640, 250}); // 310 of it left of the primary display, 330 on it

    engine.snapFocused(kLeftHalf, {});

    EXPECT_EQ(desktop.frame(window), (Rect{12, 31, 620, 725}));
}

TEST_F(WindowActionsTest, SnapPullsAWindowWithAMinimumSizeIntoTheVisibleArea) {
    desktop.window(window).minimum = {900, 500};

    engine.snapFocused(kRightHalf, {});

    EXPECT_EQ(desktop.frame(window), (Rect{-1000, -575, 900, 820}));
}

TEST_F(WindowActionsTest, SnapKeepsAWindowOfFixedSizeInTheVisibleArea) {
    desktop.window(window).minimum = desktop.window(window).maximum = {640, 480};

    engine.snapFocused({true, 75, 75, 25, 25}, {});

    EXPECT_EQ(desktop.frame(window), (Rect{-740, -235, 640, 480}));
}

TEST_F(WindowActionsTest, SnapLeavesAWindowWithSizeStepsSmallerThanItsZone) {
    desktop.window(window).step = {7, 14};

    engine.snapFocused(kRightHalf, {});

    EXPECT_EQ(desktop.frame(window), (Rect{-750, -575, 644, 812}));
}

TEST_F(WindowActionsTest, SnapWithoutAnyScreenLeavesTheWindow) {
    for (const Screen& screen : desktop.displays().screens())
        desktop.removeScreen(screen.id);
    desktop.setMainScreen(std::nullopt);

    engine.snapFocused(kRightHalf, 1);
    engine.centerFocused();

    EXPECT_TRUE(desktop.takeWrites().empty());
}

TEST_F(WindowActionsTest, SnapIntoAZoneSmallerThanTheGapLeavesTheWindow) {
    settings.gap = 400;

    engine.snapFocused({true, 0, 0, 10, 10}, {});

    EXPECT_EQ(desktop.frame(window), kStart);
}

TEST_F(WindowActionsTest, CentreKeepsTheSize) {
    engine.centerFocused();

    EXPECT_EQ(desktop.frame(window), (Rect{-1070, -405, 640, 480}));
    EXPECT_TRUE(settings.appZones.empty());
}

TEST_F(WindowActionsTest, CentreShrinksAWindowLargerThanTheVisibleArea) {
    desktop.drag(window, {-1500, -700, 1600, 1000});

    engine.centerFocused();

    EXPECT_EQ(desktop.frame(window), kUsable);
}

TEST_F(WindowActionsTest, CentreShrinksOnlyTheSideThatIsTooLarge) {
    desktop.drag(window, {-1240, -700, 640, 1000});
    engine.centerFocused();
    EXPECT_EQ(desktop.frame(window), (Rect{-1070, -575, 640, 820}));

    desktop.drag(window, {-1500, -450, 1400, 480});
    engine.centerFocused();
    EXPECT_EQ(desktop.frame(window), (Rect{-1400, -405, 1300, 480}));
}

TEST_F(WindowActionsTest, CentreRoundsThePositionAndKeepsTheSize) {
    desktop.drag(window, at({100, 100, 641, 480.5}));

    engine.centerFocused();

    // -750 - 320.5 = -1070.5, -165 - 240.25 = -405.25
    EXPECT_EQ(desktop.frame(window), (Rect{-1071, -405, 641, 480.5}));

    desktop.drag(window, at({100, 100, 640.5, 481}));
    engine.centerFocused();
    EXPECT_EQ(desktop.frame(window), (Rect{-1070, -406, 640.5, 481}));
}

TEST_F(WindowActionsTest, CentreKeepsAWindowThatRefusesToShrinkInTheVisibleArea) {
    desktop.window(window).minimum = {1350, 100};
    desktop.drag(window, at({0, 100, 1350, 480}));

    engine.centerFocused();

    EXPECT_EQ(desktop.frame(window), (Rect{-1400, -405, 1350, 480}));
}

TEST_F(WindowActionsTest, CentreCanBeRestored) {
    engine.centerFocused();
    engine.restoreFocused();

    EXPECT_EQ(desktop.frame(window), kStart);
}

TEST_F(WindowActionsTest, ANumberedZoneIsRememberedForTheApplicationAndSaved) {
    engine.snapFocused(kLeftHalf, 4);

    EXPECT_EQ(settings.appZones.at("org.example.editor"), 4);
    sim::SimPreferences nextStart{desktop.preferencesStorage()};
    EXPECT_EQ(Store(nextStart).settings.appZones.at("org.example.editor"), 4);
}

TEST_F(WindowActionsTest, AnUnnumberedZoneIsNotRemembered) {
    engine.snapFocused(kLeftHalf, {});

    EXPECT_TRUE(settings.appZones.empty());
    EXPECT_EQ(desktop.preferencesStorage().writes, 0);
}

TEST_F(WindowActionsTest, AZoneThatTheDesktopRefusesIsNotRemembered) {
    desktop.window(window).isTiled = true;

    engine.snapFocused(kLeftHalf, 4);

    EXPECT_EQ(desktop.frame(window), kStart);
    EXPECT_TRUE(settings.appZones.empty());
}

TEST_F(WindowActionsTest, ARefusedPlacementKeepsTheFrameToRestore) {
    engine.snapFocused(kLeftHalf, {});
    desktop.window(window).isTiled = true;
    engine.centerFocused();
    desktop.window(window).isTiled = false;

    engine.restoreFocused();

    EXPECT_EQ(desktop.frame(window), kStart);
}

TEST_F(WindowActionsTest, ARefusedRestoreKeepsTheFrameToRestore) {
    engine.snapFocused(kLeftHalf, {});
    desktop.window(window).isTiled = true;
    engine.restoreFocused();
    desktop.window(window).isTiled = false;

    engine.restoreFocused();

    EXPECT_EQ(desktop.frame(window), kStart);
}

TEST_F(WindowActionsTest, AZoneThatIsAlreadyRememberedIsNotSavedAgain) {
    engine.snapFocused(kLeftHalf, 4);
    engine.snapFocused(kLeftHalf, 4);
    EXPECT_EQ(desktop.preferencesStorage().writes, 1);

    engine.snapFocused(kLeftHalf, 5);
    EXPECT_EQ(desktop.preferencesStorage().writes, 2);
    EXPECT_EQ(settings.appZones.at("org.example.editor"), 5);
}

TEST_F(WindowActionsTest, NothingIsRememberedWhenRememberingIsOff) {
    settings.rememberApps = false;

    engine.snapFocused(kLeftHalf, 4);

    EXPECT_EQ(desktop.frame(window), kLeft);
    EXPECT_TRUE(settings.appZones.empty());
    EXPECT_EQ(desktop.preferencesStorage().writes, 0);
}

TEST_F(WindowActionsTest, AnApplicationWithoutAnIdentifierIsMovedButNotRemembered) {
    const auto nameless = desktop.openWindow(desktop.launch({}), {.axFrame = kStart});

    engine.snapFocused(kLeftHalf, 4);

    EXPECT_EQ(desktop.frame(nameless), kLeft);
    EXPECT_TRUE(settings.appZones.empty());
    EXPECT_EQ(desktop.preferencesStorage().writes, 0);
}

TEST_F(WindowActionsTest, SettingsAreSavedAfterTheWindowIsPlaced) {
    Rect seen;
    desktop.preferencesStorage().whileWriting = [&] { seen = desktop.frame(window); };

    engine.snapFocused(kRightHalf, 1);

    EXPECT_EQ(seen, kRight);
}

} // namespace
} // namespace tessarel
