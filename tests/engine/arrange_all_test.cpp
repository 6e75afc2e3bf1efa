// SPDX-License-Identifier: MIT

#include "arrange_test.h"
#include "ports/desktop/window_list_port.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace tessarel {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

TEST_F(ArrangeAllTest, TheFrontmostWindowsTakeTheEnabledZonesInOrder) {
    const auto fifth = open(kStart);
    const auto fourth = open(at({10, 10, 300, 300}));
    const auto third = open(at({20, 20, 300, 300}));
    const auto second = open(at({30, 30, 300, 300}));
    const auto first = open(at({40, 40, 300, 300}));

    engine.arrangeAll();

    EXPECT_EQ(desktop.frame(first), kColumn1);
    EXPECT_EQ(desktop.frame(second), kColumn2);
    EXPECT_EQ(desktop.frame(third), kColumn3);
    EXPECT_TRUE(isUntouched(fourth, at({10, 10, 300, 300})));
    EXPECT_TRUE(isUntouched(fifth, kStart));
}

TEST_F(ArrangeAllTest, TheFrontmostWindowIsPlacedFirst) {
    const auto third = open(at({20, 20, 300, 300}));
    const auto second = desktop.openWindow("org.example.viewer", at({30, 30, 300, 300}));
    const auto first = open(at({40, 40, 300, 300}));

    engine.arrangeAll();

    auto writes = desktop.takeWrites();
    std::erase_if(writes, [](const std::string& write) { return !write.ends_with("x820"); });
    EXPECT_EQ(
        writes,
        (Lines{"write " + name(first) + " AXSize 325x820", "write " + name(first) + " AXSize 325x820",
               "write " + name(second) + " AXSize 650x820", "write " + name(second) + " AXSize 650x820",
               "write " + name(third) + " AXSize 325x820", "write " + name(third) + " AXSize 325x820"}));
}

TEST_F(ArrangeAllTest, ZonesKeepGapAndMargin) {
    settings.gap = 10;
    settings.margin = 8;
    const auto first = open(kStart);

    engine.arrangeAll();

    EXPECT_EQ(desktop.frame(first), geo.zoneFrame(settings.zones[0], kUsable));
    EXPECT_EQ(desktop.frame(first).origin(), (Point{-1392, -567}));
}

TEST_F(ArrangeAllTest, ADisabledZoneIsSkipped) {
    settings.zones[1].enabled = false;
    const auto second = open(at({30, 30, 300, 300}));
    const auto first = open(at({40, 40, 300, 300}));

    engine.arrangeAll();

    EXPECT_EQ(desktop.frame(first), kColumn1);
    EXPECT_EQ(desktop.frame(second), kColumn3);
}

TEST_F(ArrangeAllTest, ZonesWithoutAWindowStayEmpty) {
    const auto only = open(kStart);

    engine.arrangeAll();

    EXPECT_EQ(desktop.frame(only), kColumn1);
    EXPECT_EQ(desktop.beeps(), 0);
}

TEST_F(ArrangeAllTest, WithoutEnabledZonesNoRequestIsSent) {
    settings.zones.assign(9, kOff);
    open(kStart);
    static_cast<void>(desktop.takeRequests());

    engine.arrangeAll();

    EXPECT_TRUE(desktop.takeRequests().empty());
}

TEST_F(ArrangeAllTest, SmallWindowsAreLeftAlone) {
    for (const Rect& small : {at({9, 9, 100, 400}), at({9, 9, 119.9, 400}), at({9, 9, 400, 79.9})}) {
        const auto window = open(small);
        engine.arrangeAll();
        EXPECT_TRUE(isUntouched(window, small));
        desktop.close(window);
    }
}

TEST_F(ArrangeAllTest, AWindowOfTheMinimumSizeIsArranged) {
    const auto window = open(at({10, 10, 120, 80}));

    engine.arrangeAll();

    EXPECT_EQ(desktop.frame(window), kColumn1);
}

TEST_F(ArrangeAllTest, AWindowBelongsToTheDisplayThatContainsItsCentre) {
    const Rect mostlyRight{-200, 20, 500, 250};
    const auto right = open(mostlyRight);
    const auto left = open(kStart);

    engine.arrangeAll();

    EXPECT_EQ(desktop.frame(left), kColumn1);
    EXPECT_TRUE(isUntouched(right, mostlyRight));
}

TEST_F(ArrangeAllTest, ACentreOnTheFarEdgeOfTheAreaIsOutside) {
    open({1340, 100, 200, 200}); // its centre is at (1440, 200)

    EXPECT_TRUE(engine.visibleWindows({1000, 0, 440, 900}, 9).empty());
    EXPECT_EQ(engine.visibleWindows({1000, 0, 440.5, 900}, 9).size(), 1U);
    EXPECT_TRUE(engine.visibleWindows({1000, -100, 900, 300}, 9).empty());
    EXPECT_EQ(engine.visibleWindows({1000, -100, 900, 300.5}, 9).size(), 1U);
}

TEST_F(ArrangeAllTest, ACentreOnTheNearEdgeOfTheAreaIsInside) {
    open({1340, 100, 200, 200});

    EXPECT_EQ(engine.visibleWindows({1440, 200, 100, 100}, 9).size(), 1U);
    EXPECT_TRUE(engine.visibleWindows({1440.5, 200, 100, 100}, 9).empty());
    EXPECT_TRUE(engine.visibleWindows({1440, 200.5, 100, 100}, 9).empty());
}

TEST_F(ArrangeAllTest, AWindowWhoseCentreIsBehindABarIsArranged) {
    for (const Rect& behind : {at({-100, 300, 210, 200}), at({500, -90, 300, 200}), at({1300, 300, 220, 200}),
                               at({500, 800, 300, 180})}) {
        const auto window = open(behind);
        engine.arrangeAll();
        EXPECT_EQ(desktop.frame(window), kColumn1) << behind.x << ", " << behind.y;
        desktop.close(window);
    }
}

TEST_F(ArrangeAllTest, NearlyTransparentWindowsAreLeftAlone) {
    const auto faint = open(at({10, 10, 300, 300}));
    const auto fainter = open(kStart);
    desktop.window(faint).alpha = 0.05;
    desktop.window(fainter).alpha = 0.04;

    engine.arrangeAll();

    EXPECT_EQ(desktop.frame(faint), kColumn1);
    EXPECT_TRUE(isUntouched(fainter, kStart));
}

TEST_F(ArrangeAllTest, AWindowOfUnknownOpacityIsArranged) {
    const auto window = open(kStart);
    desktop.window(window).alpha.reset();

    engine.arrangeAll();

    EXPECT_EQ(desktop.frame(window), kColumn1);
}

TEST_F(ArrangeAllTest, ThisProgramsOwnWindowsAreLeftAlone) {
    const auto editor = open(kStart);
    const auto own = desktop.openOwnWindow(at({10, 10, 820, 540}));
    desktop.focus(editor);
    desktop.focus(own);
    desktop.setMainScreen(desktop.displays().screens().at(1));
    static_cast<void>(desktop.takeRequests());

    engine.arrangeAll();

    EXPECT_TRUE(isUntouched(own, at({10, 10, 820, 540})));
    EXPECT_EQ(desktop.frame(editor), kColumn1);
    const std::string self = "application " + std::to_string(sim::SimState::kOwnPid);
    EXPECT_THAT(desktop.takeRequests(), Not(Contains(HasSubstr(self))))
        << "its window list is not read either";
}

TEST_F(ArrangeAllTest, IgnoredProgramsAreLeftAlone) {
    settings.ignoredApps = {"org.example.editor"};
    const auto ignored = open(kStart);
    const auto other = desktop.openWindow("org.example.viewer", at({10, 10, 300, 300}));

    engine.arrangeAll();

    EXPECT_TRUE(isUntouched(ignored, kStart));
    EXPECT_EQ(desktop.frame(other), kColumn1);
}

TEST_F(ArrangeAllTest, OfAProcessWithSeveralApplicationsOnlyTheIgnoredOneIsLeftAlone) {
    const auto text = open(kStart);
    const auto table = open(at({10, 10, 300, 300}));
    desktop.window(table).bundleIdentifier = "org.example.table";

    settings.ignoredApps = {"org.example.table"};
    engine.arrangeAll();
    EXPECT_TRUE(isUntouched(table, at({10, 10, 300, 300})));
    EXPECT_EQ(desktop.frame(text), kColumn1);

    settings.ignoredApps = {"org.example.editor"};
    engine.arrangeAll();
    EXPECT_EQ(desktop.frame(table), kColumn1);
}

TEST_F(ArrangeAllTest, AProcessWhoseWindowsAreAllIgnoredIsSentNoRequest) {
    const auto window = open(kStart);
    const auto other = desktop.openWindow("org.example.viewer", at({10, 10, 300, 300}));
    settings.ignoredApps = {"org.example.editor"};
    const std::string ignored = "application " + std::to_string(desktop.window(window).pid);

    engine.arrangeAll();

    EXPECT_EQ(desktop.frame(other), kColumn1);
    EXPECT_THAT(desktop.takeRequests(), Not(Contains(HasSubstr(ignored))));
}

TEST_F(ArrangeAllTest, WithoutAFocusedWindowTheMainScreenIsArranged) {
    const auto onPrimary = open({600, 100, 300, 300});
    const auto left = open(kStart);
    desktop.deactivateAll();

    engine.arrangeAll();

    EXPECT_EQ(desktop.frame(onPrimary), kPrimaryColumn1);
    EXPECT_TRUE(isUntouched(left, kStart));
}

TEST_F(ArrangeAllTest, WithAFocusedWindowThatCannotBeReadTheMainScreenIsArranged) {
    const auto onPrimary = desktop.openWindow("org.example.viewer", {600, 100, 300, 300});
    const auto left = open(kStart);
    desktop.window(left).overrides["AXSize"] = std::nullopt;

    engine.arrangeAll();

    EXPECT_EQ(desktop.frame(onPrimary), kPrimaryColumn1);
    EXPECT_TRUE(isUntouched(left, kStart));
}

TEST_F(ArrangeAllTest, WithAFocusedWindowOfThisProgramTheMainScreenIsArranged) {
    const auto onPrimary = open({600, 100, 300, 300});
    const auto left = open(kStart);
    desktop.openOwnWindow(at({10, 10, 820, 540}));

    engine.arrangeAll();

    EXPECT_EQ(desktop.frame(onPrimary), kPrimaryColumn1);
    EXPECT_TRUE(isUntouched(left, kStart));
}

TEST_F(ArrangeAllTest, AFocusedWindowThatCannotBeMovedStillDeterminesTheScreen) {
    const auto below = open(kStart);
    const auto focused = open(at({10, 10, 300, 300}));
    desktop.window(focused).role = "AXSheet";

    engine.arrangeAll();

    EXPECT_EQ(desktop.frame(below), kColumn1);
    EXPECT_TRUE(isUntouched(focused, at({10, 10, 300, 300})));
}

TEST_F(ArrangeAllTest, WithoutAnyDisplayNothingHappens) {
    const auto window = open(kStart);
    for (const Screen& screen : desktop.displays().screens())
        desktop.removeScreen(screen.id);
    desktop.setMainScreen(std::nullopt);

    engine.arrangeAll();

    EXPECT_TRUE(isUntouched(window, kStart));
}

TEST_F(ArrangeAllTest, TheFocusedWindowDeterminesTheScreenEvenWhenItsProgramIsIgnored) {
    const auto other = desktop.openWindow("org.example.viewer", at({10, 10, 300, 300}));
    const auto ignored = open(kStart);
    settings.ignoredApps = {"org.example.editor"};

    engine.arrangeAll();

    EXPECT_EQ(desktop.frame(other), kColumn1);
    EXPECT_TRUE(isUntouched(ignored, kStart));
}

TEST_F(ArrangeAllTest, UnusableWindowListEntriesAreSkipped) {
    const auto window = open(kStart);
    const auto skipped = [&](const ListedWindow& listed) {
        desktop.window(window).listed = listed;
        return engine.visibleWindows(kScreen, 9).empty();
    };
    constexpr std::int64_t kProcessIds = std::int64_t{1} << 32;
    const ProcessId pid = desktop.window(window).pid;

    EXPECT_TRUE(skipped({{}, pid, kStart, 1}));
    EXPECT_TRUE(skipped({3, pid, kStart, 1}));
    EXPECT_TRUE(skipped({0, {}, kStart, 1}));
    EXPECT_TRUE(skipped({-1, pid, kStart, 1}));
    EXPECT_TRUE(skipped({0, pid + kProcessIds, kStart, 1}))
        << "not the process whose id has the same low bits";
    EXPECT_TRUE(skipped({0, pid - kProcessIds, kStart, 1}));
    EXPECT_TRUE(skipped({0, pid, {}, 1}));
    EXPECT_FALSE(skipped({0, pid, kStart, 1}));
}

TEST_F(ArrangeAllTest, ProcessIdsAtTheLimitsOfTheirTypeWork) {
    using Limits = std::numeric_limits<ProcessId>;
    for (const ProcessId pid : {Limits::min(), Limits::max()}) {
        desktop.launchAs(pid, {});
        const auto window = desktop.openWindow(pid, {.axFrame = kStart});
        engine.arrangeAll();
        EXPECT_EQ(desktop.frame(window), kColumn1) << pid;
    }
}

TEST_F(ArrangeAllTest, AListedWindowIsMatchedByItsFrameWithinFourPoints) {
    const auto window = open(kStart);
    const ProcessId pid = desktop.window(window).pid;

    const auto isFoundAs = [&](const Rect& axBounds) {
        desktop.window(window).listed = ListedWindow{0, pid, axBounds, 1};
        return !engine.visibleWindows(kScreen, 9).empty();
    };

    EXPECT_TRUE(isFoundAs(at({204, 146, 644, 476})));
    EXPECT_TRUE(isFoundAs(at({196, 154, 636, 484})));
    EXPECT_FALSE(isFoundAs(at({204.5, 150, 640, 480})));
    EXPECT_FALSE(isFoundAs(at({200, 145.5, 640, 480})));
    EXPECT_FALSE(isFoundAs(at({200, 150, 644.5, 480})));
    EXPECT_FALSE(isFoundAs(at({200, 150, 640, 475.5})));
}

TEST_F(ArrangeAllTest, TwoWindowsOfOneProgramWithEqualFramesAreBothArranged) {
    const auto below = open(kStart);
    const auto above = open(kStart);

    engine.arrangeAll();

    EXPECT_EQ(desktop.frame(above), kColumn1);
    EXPECT_EQ(desktop.frame(below), kColumn2);
}

TEST_F(ArrangeAllTest, AListedKeyTellsTheWindowFromAnotherOneWithItsFrame) {
    const auto window = open(kStart);
    const auto elsewhere = open(kStart); // on another virtual desktop, so it is not listed
    desktop.window(elsewhere).listed = ListedWindow{};
    desktop.window(window).listed =
        ListedWindow{0, desktop.window(window).pid, kStart, 1, engine.key(desktop.element(window))};

    engine.arrangeAll();

    EXPECT_EQ(desktop.frame(window), kColumn1);
    EXPECT_TRUE(isUntouched(elsewhere, kStart));
}

TEST_F(ArrangeAllTest, AnUnresponsiveProgramTakesNoZone) {
    const auto silent = open(kStart);
    const auto other = desktop.openWindow("org.example.viewer", at({10, 10, 300, 300}));
    desktop.applicationOf(silent).answerTime = sim::SimApplication::kTimeLimit;
    desktop.focus(silent);
    desktop.activate(desktop.window(other).pid); // the unresponsive one stays on top

    engine.arrangeAll();

    EXPECT_EQ(desktop.frame(other), kColumn1);
}

TEST_F(ArrangeAllTest, AProgramIsQueriedOnlyWhenItsListedWindowQualifies) {
    open(at({10, 10, 100, 100}));
    static_cast<void>(desktop.takeRequests());

    EXPECT_TRUE(engine.visibleWindows(kScreen, 9).empty());

    EXPECT_TRUE(desktop.takeRequests().empty());
}

TEST_F(ArrangeAllTest, NoFurtherProgramIsQueriedOnceThereAreEnoughWindows) {
    open(kStart);
    const auto first = desktop.openWindow("org.example.viewer", at({10, 10, 300, 300}));
    static_cast<void>(desktop.takeRequests());

    const auto found = engine.visibleWindows(kScreen, 1);

    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].pid, desktop.window(first).pid);
    EXPECT_EQ(engine.key(found[0].element), engine.key(desktop.element(first)));
    const std::string viewer = "read application " + std::to_string(desktop.window(first).pid);
    EXPECT_THAT(desktop.takeRequests(),
                ElementsAre(viewer + " AXWindows", "read " + name(first) + " AXRole",
                            "read " + name(first) + " AXMinimized", "read " + name(first) + " AXFullScreen",
                            "read " + name(first) + " AXPosition", "read " + name(first) + " AXSize"));
}

TEST_F(ArrangeAllTest, WindowsThatCannotBeMovedAreLeftAlone) {
    const auto other = open(at({10, 10, 300, 300}));
    const auto stays = open(kStart);
    for (const char* const attribute : {"AXMinimized", "AXFullScreen"}) {
        desktop.window(stays).overrides = {{attribute, true}};
        engine.arrangeAll();
        EXPECT_TRUE(isUntouched(stays, kStart)) << attribute;
        EXPECT_EQ(desktop.frame(other), kColumn1);
    }
    desktop.window(stays).overrides = {{"AXRole", "AXSheet"}};
    engine.arrangeAll();
    EXPECT_TRUE(isUntouched(stays, kStart));
}

TEST_F(ArrangeAllTest, AWindowWithoutARoleIsArranged) {
    const auto window = open(kStart);
    desktop.window(window).role.reset();

    engine.arrangeAll();

    EXPECT_EQ(desktop.frame(window), kColumn1);
}

TEST_F(ArrangeAllTest, AnUnreadableWindowIsSkippedForTheNextOneWithItsFrame) {
    const auto readable = open(kStart);
    const auto silent = open(kStart);
    desktop.window(silent).overrides["AXPosition"] = std::nullopt;
    desktop.applicationOf(silent).focusedWindow = readable;

    engine.arrangeAll();

    EXPECT_EQ(desktop.frame(readable), kColumn1);
    EXPECT_TRUE(isUntouched(silent, kStart));
}

TEST_F(ArrangeAllTest, ALimitOfZeroFindsNothing) {
    open(kStart);

    EXPECT_TRUE(engine.visibleWindows(kScreen, 0).empty());
}

TEST_F(ArrangeAllTest, EachWindowCanBeRestored) {
    open(kStart);
    const auto first = open(at({40, 40, 300, 300}));

    engine.arrangeAll();
    engine.restoreFocused();

    EXPECT_EQ(desktop.frame(first), at({40, 40, 300, 300}));
}

TEST_F(ArrangeAllTest, NothingIsRememberedForTheProgram) {
    open(kStart);

    engine.arrangeAll();

    EXPECT_TRUE(settings.appZones.empty());
    EXPECT_EQ(desktop.preferencesStorage().writes, 0);
    EXPECT_EQ(desktop.beeps(), 0);
}

TEST_F(ArrangeAllTest, AWindowThatRefusesItsSizeIsKeptInTheUsableArea) {
    settings.zones = {Zone{true, 75, 0, 25, 100}};
    const auto window = open(kStart);
    desktop.window(window).minimum = {600, 100};

    engine.arrangeAll();

    EXPECT_EQ(desktop.frame(window), (Rect{-700, -575, 600, 820}));
}

TEST_F(ArrangeAllTest, TheActionArrangesTheWindows) {
    const auto window = open(kStart);

    runner.run(ActionID::arrangeAll);

    EXPECT_EQ(desktop.frame(window), kColumn1);
}

} // namespace
} // namespace tessarel
