#include "engine_test.h"
#include "ports/window_list_port.h"

#include <cstdint>
#include <limits>

namespace tessarel {
namespace {

using sim::WindowId;

/// A display of 1440 by 900 without bars, whose enabled zones are three columns of 480.
class ArrangeAllTest : public EngineTest {
protected:
    static constexpr Zone kOff{false, 25, 25, 50, 50};

    ArrangeAllTest() {
        desktop.addScreen({.frame = {0, 0, 1440, 900}});
        settings.zones = Presets::pad(Presets::all().at(2).zones);
    }

    WindowId open(const Rect& axFrame) { return desktop.openWindow("org.example.editor", axFrame); }

    /// The window, as it is seen and never moved.
    bool isUntouched(WindowId window, const Rect& axFrame) { return desktop.frame(window) == axFrame; }

    static constexpr Rect kColumn1{0, 0, 480, 900};
    static constexpr Rect kColumn2{480, 0, 480, 900};
    static constexpr Rect kColumn3{960, 0, 480, 900};
    static constexpr Rect kSomewhere{200, 150, 640, 480};
};

TEST_F(ArrangeAllTest, TheFrontmostWindowsTakeTheEnabledZonesInOrder) {
    const auto fifth = open(kSomewhere);
    const auto fourth = open({10, 10, 300, 300});
    const auto third = open({20, 20, 300, 300});
    const auto second = open({30, 30, 300, 300});
    const auto first = open({40, 40, 300, 300});

    engine.arrangeAll();

    EXPECT_EQ(desktop.frame(first), kColumn1);
    EXPECT_EQ(desktop.frame(second), kColumn2);
    EXPECT_EQ(desktop.frame(third), kColumn3);
    EXPECT_TRUE(isUntouched(fourth, {10, 10, 300, 300}));
    EXPECT_TRUE(isUntouched(fifth, kSomewhere));
}

TEST_F(ArrangeAllTest, ADisabledZoneIsPassedOver) {
    settings.zones[1].enabled = false;
    const auto second = open({30, 30, 300, 300});
    const auto first = open({40, 40, 300, 300});

    engine.arrangeAll();

    EXPECT_EQ(desktop.frame(first), kColumn1);
    EXPECT_EQ(desktop.frame(second), kColumn3);
}

TEST_F(ArrangeAllTest, ZonesWithoutAWindowStayEmpty) {
    const auto only = open(kSomewhere);

    engine.arrangeAll();

    EXPECT_EQ(desktop.frame(only), kColumn1);
    EXPECT_EQ(desktop.beeps(), 0);
}

TEST_F(ArrangeAllTest, WithoutEnabledZonesNothingIsAsked) {
    settings.zones.assign(9, kOff);
    open(kSomewhere);
    static_cast<void>(desktop.takeRequests());

    engine.arrangeAll();

    EXPECT_TRUE(desktop.takeRequests().empty());
}

TEST_F(ArrangeAllTest, SmallWindowsAreLeftAlone) {
    for (const Rect& small : {Rect{0, 0, 100, 400}, Rect{0, 0, 119.9, 400}, Rect{0, 0, 400, 79.9}}) {
        const auto window = open(small);
        engine.arrangeAll();
        EXPECT_TRUE(isUntouched(window, small));
        desktop.close(window);
    }
}

TEST_F(ArrangeAllTest, AWindowOfTheSmallestSizeCounts) {
    const auto window = open({10, 10, 120, 80});

    engine.arrangeAll();

    EXPECT_EQ(desktop.frame(window), kColumn1);
}

TEST_F(ArrangeAllTest, AWindowCountsOnTheDisplayOfItsMiddle) {
    desktop.addScreen({.frame = {1440, 0, 1440, 900}});
    const Rect mostlyRight{1200, 100, 500, 300};
    const auto right = open(mostlyRight);
    const auto left = open(kSomewhere);

    engine.arrangeAll();

    EXPECT_EQ(desktop.frame(left), kColumn1);
    EXPECT_TRUE(isUntouched(right, mostlyRight));
}

TEST_F(ArrangeAllTest, TheMiddleOnTheAreasFarEdgeIsOutside) {
    const auto window = open({1340, 100, 200, 200}); // its middle is at x = 1440

    EXPECT_TRUE(engine.visibleWindows({0, 0, 1440, 900}, 9).empty());
    EXPECT_EQ(engine.visibleWindows({0, 0, 1440.5, 900}, 9).size(), 1U);
    desktop.close(window);
}

TEST_F(ArrangeAllTest, NearlyTransparentWindowsAreLeftAlone) {
    const auto faint = open({10, 10, 300, 300});
    const auto fainter = open(kSomewhere);
    desktop.window(faint).alpha = 0.05;
    desktop.window(fainter).alpha = 0.04;

    engine.arrangeAll();

    EXPECT_EQ(desktop.frame(faint), kColumn1);
    EXPECT_TRUE(isUntouched(fainter, kSomewhere));
}

TEST_F(ArrangeAllTest, AWindowWithoutAWordAboutItsOpacityCounts) {
    const auto window = open(kSomewhere);
    desktop.window(window).alpha.reset();

    engine.arrangeAll();

    EXPECT_EQ(desktop.frame(window), kColumn1);
}

TEST_F(ArrangeAllTest, ThisProgramsOwnWindowsAreLeftAlone) {
    const auto own = open(kSomewhere);
    const auto listed = ListedWindow{0, sim::SimState::kOwnPid, kSomewhere, 1};
    desktop.window(own).listed = listed;

    engine.arrangeAll();

    EXPECT_TRUE(isUntouched(own, kSomewhere));
}

TEST_F(ArrangeAllTest, IgnoredProgramsAreLeftAlone) {
    settings.ignoredApps = {"org.example.editor"};
    const auto ignored = open(kSomewhere);
    const auto other = desktop.openWindow("org.example.viewer", {10, 10, 300, 300});

    engine.arrangeAll();

    EXPECT_TRUE(isUntouched(ignored, kSomewhere));
    EXPECT_EQ(desktop.frame(other), kColumn1);
}

TEST_F(ArrangeAllTest, WithoutAFocusedWindowTheMainScreenIsArranged) {
    const Screen second = desktop.addScreen({.frame = {1440, 0, 1440, 900}});
    const auto left = open(kSomewhere);
    const auto right = open({1600, 100, 300, 300});
    desktop.deactivateAll();
    desktop.setMainScreen(second);

    engine.arrangeAll();

    EXPECT_EQ(desktop.frame(right), (Rect{1440, 0, 480, 900}));
    EXPECT_TRUE(isUntouched(left, kSomewhere));
}

TEST_F(ArrangeAllTest, WithoutAnyDisplayNothingHappens) {
    const auto window = open(kSomewhere);
    desktop.removeScreen(desktop.displays().screens().front().id);

    engine.arrangeAll();

    EXPECT_TRUE(isUntouched(window, kSomewhere));
}

TEST_F(ArrangeAllTest, TheFocusedWindowPicksTheScreenEvenWhenItsProgramIsIgnored) {
    desktop.addScreen({.frame = {1440, 0, 1440, 900}});
    const auto right = desktop.openWindow("org.example.viewer", {1700, 100, 300, 300});
    const auto ignored = open({1600, 100, 300, 300});
    settings.ignoredApps = {"org.example.editor"};

    engine.arrangeAll();

    EXPECT_EQ(desktop.frame(right), (Rect{1440, 0, 480, 900}));
    EXPECT_TRUE(isUntouched(ignored, {1600, 100, 300, 300}));
}

TEST_F(ArrangeAllTest, EntriesThatMakeNoSenseAreSkipped) {
    const auto window = open(kSomewhere);
    const auto skipped = [&](const ListedWindow& listed) {
        desktop.window(window).listed = listed;
        return engine.visibleWindows({0, 0, 1440, 900}, 9).empty();
    };
    const ProcessId pid = desktop.window(window).pid;

    EXPECT_TRUE(skipped({{}, pid, kSomewhere, 1}));
    EXPECT_TRUE(skipped({3, pid, kSomewhere, 1}));
    EXPECT_TRUE(skipped({0, {}, kSomewhere, 1}));
    EXPECT_TRUE(skipped({0, std::int64_t{std::numeric_limits<ProcessId>::max()} + 1, kSomewhere, 1}));
    EXPECT_TRUE(skipped({0, pid, {}, 1}));
    EXPECT_FALSE(skipped({0, pid, kSomewhere, 1}));
}

TEST_F(ArrangeAllTest, AWindowIsFoundByItsFrameWithinFourPoints) {
    const auto window = open(kSomewhere);
    const ProcessId pid = desktop.window(window).pid;

    desktop.window(window).listed = ListedWindow{0, pid, Rect{204, 146, 644, 476}, 1};
    EXPECT_EQ(engine.visibleWindows({0, 0, 1440, 900}, 9).size(), 1U);
    desktop.window(window).listed = ListedWindow{0, pid, Rect{204.5, 150, 640, 480}, 1};
    EXPECT_TRUE(engine.visibleWindows({0, 0, 1440, 900}, 9).empty());
}

TEST_F(ArrangeAllTest, TwoWindowsOfOneProgramInOnePlaceAreBothArranged) {
    const auto below = open(kSomewhere);
    const auto above = open(kSomewhere);

    engine.arrangeAll();

    EXPECT_EQ(desktop.frame(above), kColumn1);
    EXPECT_EQ(desktop.frame(below), kColumn2);
}

TEST_F(ArrangeAllTest, AProgramThatDoesNotAnswerUsesUpNoZone) {
    const auto other = desktop.openWindow("org.example.viewer", {10, 10, 300, 300});
    const auto silent = open(kSomewhere);
    desktop.applicationOf(silent).answerTime = sim::SimApplication::kTimeLimit;
    desktop.focus(other);
    desktop.focus(silent);

    engine.arrangeAll();

    EXPECT_EQ(desktop.frame(other), kColumn1);
}

TEST_F(ArrangeAllTest, AProgramIsAskedOnlyWhenTheWindowListSpeaksForItsWindow) {
    open({10, 10, 100, 100});
    static_cast<void>(desktop.takeRequests());

    EXPECT_TRUE(engine.visibleWindows({0, 0, 1440, 900}, 9).empty());

    EXPECT_TRUE(desktop.takeRequests().empty());
}

TEST_F(ArrangeAllTest, ALimitOfNothingFindsNothing) {
    open(kSomewhere);

    EXPECT_TRUE(engine.visibleWindows({0, 0, 1440, 900}, 0).empty());
}

TEST_F(ArrangeAllTest, EachWindowCanBeRestored) {
    open(kSomewhere);
    const auto first = open({40, 40, 300, 300});

    engine.arrangeAll();
    engine.restoreFocused();

    EXPECT_EQ(desktop.frame(first), (Rect{40, 40, 300, 300}));
}

TEST_F(ArrangeAllTest, NothingIsRememberedForTheProgram) {
    open(kSomewhere);

    engine.arrangeAll();

    EXPECT_TRUE(settings.appZones.empty());
}

TEST_F(ArrangeAllTest, AWindowThatRefusesItsSizeIsKeptInside) {
    settings.zones = {Zone{true, 75, 0, 25, 100}};
    const auto window = open(kSomewhere);
    desktop.window(window).minimum = {600, 100};

    engine.arrangeAll();

    EXPECT_EQ(desktop.frame(window), (Rect{840, 0, 600, 900}));
}

TEST_F(ArrangeAllTest, TheHotKeyArranges) {
    const auto window = open(kSomewhere);

    runner.run(ActionID::arrangeAll);

    EXPECT_EQ(desktop.frame(window), kColumn1);
}

} // namespace
} // namespace tessarel
