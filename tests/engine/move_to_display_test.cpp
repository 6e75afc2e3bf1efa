#include "engine/engine_test.h"
#include "engine/window_engine.h"

namespace tessarel {
namespace {

class MoveToDisplayTest : public EngineTest {
protected:
    sim::WindowId openWindow(const Rect& axFrame) {
        return desktop.openWindow("org.example.editor", axFrame);
    }
};

TEST_F(MoveToDisplayTest, TheWindowKeepsItsRelativePlaceAndSize) {
    addScreen();
    desktop.addScreen({.frame = {1440, -155, 1920, 1055}});
    const auto window = openWindow({360, 225, 720, 437.5});

    engine.moveFocusedToDisplay(1);

    // The window does not stick out: 241 + 528 is well within 1055.
    EXPECT_EQ(desktop.takeWrites(), (Lines{"write " + name(window) + " AXSize 960x528",
                                           "write " + name(window) + " AXPosition 1920,241",
                                           "write " + name(window) + " AXSize 960x528"}));
    EXPECT_EQ(desktop.frame(window), (Rect{1920, 241, 960, 528}));
}

TEST_F(MoveToDisplayTest, DisplaysFollowEachOtherFromLeftToRightAndRoundAbout) {
    const Screen b = desktop.addScreen({.frame = {0, 0, 1000, 800}});
    const Screen a = desktop.addScreen({.frame = {-1000, 0, 1000, 800}});
    const Screen c = desktop.addScreen({.frame = {1000, 0, 1000, 800}});
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

TEST_F(MoveToDisplayTest, DisplaysAboveEachOtherFollowTheSystemsOrder) {
    std::vector<Screen> screens;
    for (int n = 0; n < 20; ++n) // so many that a sort that is not stable would show
        screens.push_back(desktop.addScreen({.frame = {0, (n % 2 == 0 ? n : -n) * 800.0, 1000, 800}}));
    const auto window = openWindow({200, 100, 500, 400});

    for (std::size_t n = 1; n <= screens.size(); ++n) {
        engine.moveFocusedToDisplay(1);
        EXPECT_EQ(geo.screen(desktop.frame(window)), screens[n % screens.size()]);
    }
}

TEST_F(MoveToDisplayTest, WithOneDisplayTheAlertSounds) {
    addScreen();
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

TEST_F(MoveToDisplayTest, AWindowWiderThanItsDisplayBecomesAsWideAsTheOther) {
    desktop.addScreen({.frame = {0, 0, 1000, 800}});
    desktop.addScreen({.frame = {1000, -100, 1600, 900}});
    const auto window = openWindow({0, 100, 1200, 400});

    engine.moveFocusedToDisplay(1);

    EXPECT_EQ(desktop.frame(window), (Rect{1000, 113, 1600, 450}));
}

TEST_F(MoveToDisplayTest, AWindowPartlyLeftOfItsDisplayLandsAtTheLeftEdge) {
    desktop.addScreen({.frame = {0, 0, 1000, 800}});
    desktop.addScreen({.frame = {1000, 0, 1000, 800}});
    const auto window = openWindow({-200, -50, 600, 400});

    engine.moveFocusedToDisplay(1);

    EXPECT_EQ(desktop.frame(window), (Rect{1000, 0, 600, 400}));
}

TEST_F(MoveToDisplayTest, AWindowThatWouldStickOutIsPulledBack) {
    desktop.addScreen({.frame = {0, 0, 1000, 800}});
    desktop.addScreen({.frame = {1000, 0, 1000, 800}});
    const auto window = openWindow({700, 600, 500, 400});

    engine.moveFocusedToDisplay(1);

    EXPECT_EQ(desktop.frame(window), (Rect{1500, 400, 500, 400}));
}

TEST_F(MoveToDisplayTest, AWindowFarOffScreenIsTakenForOneOfTheFirstDisplay) {
    desktop.addScreen({.frame = {0, 0, 1000, 800}});
    desktop.addScreen({.frame = {1000, 0, 1000, 800}});
    const auto window = openWindow({5000, 5000, 500, 400});

    engine.moveFocusedToDisplay(1);

    EXPECT_EQ(desktop.frame(window), (Rect{1500, 400, 500, 400}));
}

TEST_F(MoveToDisplayTest, TheMoveCanBeRestoredAndIsNotRemembered) {
    desktop.addScreen({.frame = {0, 0, 1000, 800}});
    desktop.addScreen({.frame = {1000, 0, 1000, 800}});
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
