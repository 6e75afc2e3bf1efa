// SPDX-License-Identifier: MIT

#include "engine/engine_test.h"
#include "engine/window_engine.h"

namespace tessarel {
namespace {

class MoveToDisplayTest : public EngineTest {
protected:
    static constexpr sim::ScreenOptions kBars{
        .frame = {}, .menuBar = 20, .dock = 80, .leftBar = 30, .rightBar = 70};

    /// Connects a display of 1000 by 800 with a usable area of 900 by 700 at (30, 20) from the top left.
    Screen addDisplay(double x, double y = 0) {
        sim::ScreenOptions options = kBars;
        options.frame = {x, y, 1000, 800};
        return desktop.addScreen(options);
    }
    sim::WindowId openWindow(const Rect& axFrame) {
        return desktop.openWindow("org.example.editor", axFrame);
    }
};

TEST_F(MoveToDisplayTest, TheWindowKeepsItsRelativePositionAndSize) {
    desktop.addScreen({.frame = {0, 0, 1440, 900}, .menuBar = 25});
    desktop.addScreen({.frame = {1440, -155, 1920, 1055}});
    const auto window = openWindow({360, 225, 720, 437.5});

    engine.moveFocusedToDisplay(1);

    // No correction follows, since the bottom edge at 241 + 528 is well above 1055.
    EXPECT_EQ(desktop.takeWrites(), (Lines{"write " + name(window) + " AXSize 960x528",
                                           "write " + name(window) + " AXPosition 1920,241",
                                           "write " + name(window) + " AXSize 960x528"}));
    EXPECT_EQ(desktop.frame(window), (Rect{1920, 241, 960, 528}));
}

TEST_F(MoveToDisplayTest, PositionAndSizeAreRelativeToTheUsableArea) {
    addScreens();
    const auto window = openWindow({-1140, -370, 650, 410});

    engine.moveFocusedToDisplay(1);

    // One fifth from the left, one quarter from the top, half the size. Unrounded: y 212.25, height 362.5.
    EXPECT_EQ(desktop.frame(window), (Rect{260, 212, 620, 363}));
}

TEST_F(MoveToDisplayTest, HalvesAtNegativeCoordinatesAreRoundedAwayFromZero) {
    addScreens();
    const auto window = openWindow({167, 121.625, 155, 90.625}); // one eighth of the usable area

    engine.moveFocusedToDisplay(1);

    // unrounded: (-1237.5, -472.5, 162.5, 102.5)
    EXPECT_EQ(desktop.frame(window), (Rect{-1238, -473, 163, 103}));
}

TEST_F(MoveToDisplayTest, HalvesAtPositiveCoordinatesAreRoundedAwayFromZero) {
    desktop.addScreen({.frame = {0, 0, 1024, 1024}});
    desktop.addScreen({.frame = {1024, 124, 900, 900}});
    const auto window = openWindow({128, 128, 256, 256}); // one eighth of the display from its corner

    engine.moveFocusedToDisplay(1);

    EXPECT_EQ(desktop.frame(window), (Rect{1137, 113, 225, 225})) << "from (1136.5, 112.5)";
}

TEST_F(MoveToDisplayTest, DisplaysAreOrderedFromLeftToRightAndWrapAround) {
    const Screen b = addDisplay(0);
    const Screen a = addDisplay(-1000);
    const Screen c = addDisplay(1000);
    const auto window = openWindow({1200, 100, 500, 400});
    const auto shownOn = [&] { return geo.screen(desktop.frame(window)); };

    engine.moveFocusedToDisplay(1);
    EXPECT_EQ(shownOn(), a);
    engine.moveFocusedToDisplay(-1);
    EXPECT_EQ(shownOn(), c);
    engine.moveFocusedToDisplay(-1);
    EXPECT_EQ(shownOn(), b);
    engine.moveFocusedToDisplay(-1);
    EXPECT_EQ(shownOn(), a);
    EXPECT_EQ(desktop.frame(window), (Rect{-800, 100, 500, 400}));
}

TEST_F(MoveToDisplayTest, DisplaysAboveEachOtherKeepTheOrderOfTheSystem) {
    std::vector<Screen> screens;
    for (int n = 0; n < 20; ++n) // enough to expose an unstable sort
        screens.push_back(desktop.addScreen({.frame = {0, (n % 2 == 0 ? n : -n) * 800.0, 1000, 800}}));
    const auto window = openWindow({200, 100, 500, 400});

    for (std::size_t n = 1; n <= screens.size(); ++n) {
        engine.moveFocusedToDisplay(1);
        EXPECT_EQ(geo.screen(desktop.frame(window)), screens[n % screens.size()]);
    }
}

TEST_F(MoveToDisplayTest, DisplaysAreOrderedByTheirFramesNotByTheirUsableAreas) {
    desktop.addScreen({.frame = {0, 0, 1000, 800}, .leftBar = 300}); // usable from x = 300
    const Screen above = desktop.addScreen({.frame = {100, 800, 1000, 800}});
    const Screen right = addDisplay(1100);
    const auto window = openWindow({400, 100, 200, 200});

    engine.moveFocusedToDisplay(1);
    EXPECT_EQ(geo.screen(desktop.frame(window)), above);
    engine.moveFocusedToDisplay(1);
    EXPECT_EQ(geo.screen(desktop.frame(window)), right);
}

TEST_F(MoveToDisplayTest, TheMainScreenDoesNotMatter) {
    addDisplay(0);
    const Screen second = addDisplay(1000);
    const Screen third = addDisplay(2000);
    desktop.setMainScreen(third);
    const auto window = openWindow({200, 100, 500, 400});

    engine.moveFocusedToDisplay(1);

    EXPECT_EQ(geo.screen(desktop.frame(window)), second);
}

TEST_F(MoveToDisplayTest, WithOneDisplayTheAlertSounds) {
    addDisplay(0);
    const auto window = openWindow({200, 150, 640, 480});

    engine.moveFocusedToDisplay(1);
    engine.moveFocusedToDisplay(-1);

    EXPECT_EQ(desktop.beeps(), 2);
    EXPECT_EQ(desktop.frame(window), (Rect{200, 150, 640, 480}));
}

TEST_F(MoveToDisplayTest, WithoutDisplaysTheAlertSounds) {
    openWindow({200, 150, 640, 480});

    engine.moveFocusedToDisplay(1);

    EXPECT_EQ(desktop.beeps(), 1);
}

TEST_F(MoveToDisplayTest, OnADisplayThatIsNoLongerListedTheAlertSounds) {
    sim::SimDesktop before;
    for (const double x : {0, 1000, 2000})
        before.addScreen({.frame = {x, 0, 1000, 800}});
    Geo outdated{before.displays(), store};
    WindowEngine unsettled{
        ax,   outdated, desktop.displays(), desktop.workspace(), desktop.windowList(), desktop.alertSound(),
        store};
    addDisplay(0);
    addDisplay(1000);
    openWindow({2200, 150, 640, 480});

    EXPECT_EQ(unsettled.moveFocusedToDisplay(1), Outcome::NoOtherDisplay);

    EXPECT_EQ(desktop.beeps(), 1);
    EXPECT_TRUE(desktop.takeWrites().empty());
}

TEST_F(MoveToDisplayTest, AWindowWiderThanItsDisplayGetsTheWidthOfTheTarget) {
    desktop.addScreen({.frame = {0, 0, 1000, 800}});
    desktop.addScreen({.frame = {1000, -100, 1600, 900}});
    const auto window = openWindow({0, 100, 1200, 400});

    engine.moveFocusedToDisplay(1);

    EXPECT_EQ(desktop.frame(window), (Rect{1000, 113, 1600, 450}));
}

TEST_F(MoveToDisplayTest, AWindowPartlyLeftOfItsDisplayLandsAtTheLeftEdge) {
    addDisplay(0);
    addDisplay(1000);
    const auto window = openWindow({-200, -50, 600, 400});

    engine.moveFocusedToDisplay(1);

    EXPECT_EQ(desktop.frame(window), (Rect{1030, 20, 600, 400}));
}

TEST_F(MoveToDisplayTest, AWindowThatWouldStickOutIsPulledBack) {
    addDisplay(0);
    addDisplay(1000);
    const auto window = openWindow({700, 600, 500, 400});

    engine.moveFocusedToDisplay(1);

    EXPECT_EQ(desktop.frame(window), (Rect{1430, 320, 500, 400}));
}

TEST_F(MoveToDisplayTest, AWindowFarOffScreenBelongsToTheFirstDisplay) {
    addDisplay(0);
    addDisplay(1000);
    addDisplay(2000);
    const auto window = openWindow({5000, 5000, 500, 400});

    engine.moveFocusedToDisplay(1);

    EXPECT_EQ(desktop.frame(window), (Rect{1430, 320, 500, 400}));
    EXPECT_EQ(desktop.takeWrites().at(1), "write " + name(window) + " AXPosition 1930,720")
        << "the far corner at most, before the window is pulled back";
}

TEST_F(MoveToDisplayTest, AWindowTallerThanItsDisplayGetsTheHeightOfTheTarget) {
    desktop.addScreen({.frame = {0, 0, 1000, 800}});
    desktop.addScreen({.frame = {1000, 0, 1000, 400}});
    const auto window = openWindow({100, 0, 500, 900});

    engine.moveFocusedToDisplay(1);

    EXPECT_EQ(desktop.frame(window), (Rect{1100, 400, 500, 400}));
}

TEST_F(MoveToDisplayTest, TheMoveCanBeRestoredAndIsNotRemembered) {
    addDisplay(0);
    addDisplay(1000, -300);
    const auto window = openWindow({100, 100, 500, 400});

    engine.moveFocusedToDisplay(1);
    engine.moveFocusedToDisplay(1);
    engine.restoreFocused();

    EXPECT_EQ(desktop.frame(window), (Rect{100, 100, 500, 400}));
    EXPECT_TRUE(settings.appZones.empty());
}

TEST_F(MoveToDisplayTest, ADisplayWithoutVisibleAreaLeavesTheWindow) {
    desktop.addScreen({.frame = {0, 0, 1000, 800}, .menuBar = 800});
    desktop.addScreen({.frame = {1000, 0, 1000, 800}});
    const auto window = openWindow({100, 0, 500, 400});

    engine.moveFocusedToDisplay(1);

    EXPECT_EQ(desktop.frame(window).y, 0);
}

} // namespace
} // namespace tessarel
