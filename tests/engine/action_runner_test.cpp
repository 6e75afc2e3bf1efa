// SPDX-License-Identifier: MIT

#include "engine/action_runner.h"

#include "engine/engine_test.h"

#include <array>
#include <utility>

namespace tessarel {
namespace {

class ActionRunnerTest : public EngineTest {
protected:
    ActionRunnerTest() { addScreens(); }

    sim::WindowId window = desktop.openWindow("org.example.editor", kStart);
};

TEST_F(ActionRunnerTest, FixedZoneActionsUseTheirPartOfTheScreen) {
    const std::array<std::pair<ActionID, Rect>, 5> expected{{{ActionID::leftHalf, kLeft},
                                                             {ActionID::rightHalf, kRight},
                                                             {ActionID::topHalf, {-1400, -575, 1300, 410}},
                                                             {ActionID::bottomHalf, {-1400, -165, 1300, 410}},
                                                             {ActionID::maximize, kUsable}}};
    for (const auto& [action, frame] : expected) {
        runner.run(action);
        EXPECT_EQ(desktop.frame(window), frame) << action.title();
    }
    EXPECT_TRUE(settings.appZones.empty());
}

TEST_F(ActionRunnerTest, MaximizeAppliesGapAndMarginAndIsNotRemembered) {
    settings.gap = 10;
    settings.margin = 8;
    settings.appZones = {{"org.example.editor", 3}};

    runner.run(ActionID::maximize);

    EXPECT_EQ(desktop.frame(window), (Rect{-1392, -567, 1284, 804}));
    EXPECT_EQ(settings.appZones.at("org.example.editor"), 3);
}

TEST_F(ActionRunnerTest, ZoneActionsUseTheUsersZonesAndAreRememberedByNumber) {
    runner.run(ActionID::zone1);
    EXPECT_EQ(desktop.frame(window), (Rect{-1400, -575, 433, 410}));
    EXPECT_EQ(settings.appZones.at("org.example.editor"), 0);

    settings.zones[8] = kRightHalf;
    runner.run(ActionID::zone9);
    EXPECT_EQ(desktop.frame(window), kRight);
    EXPECT_EQ(settings.appZones.at("org.example.editor"), 8);
}

TEST_F(ActionRunnerTest, ADisabledZoneDoesNothing) {
    ASSERT_FALSE(settings.zones[5].enabled);

    runner.run(ActionID::zone6);

    EXPECT_EQ(desktop.frame(window), kStart);
    EXPECT_TRUE(desktop.takeRequests().empty());
}

TEST_F(ActionRunnerTest, AZoneBeyondTheListDoesNothing) {
    settings.zones.assign(9, kRightHalf);
    settings.zones.resize(2);

    runner.run(ActionID::zone9);
    runner.run(ActionID::zone3);

    EXPECT_EQ(desktop.frame(window), kStart);
}

TEST_F(ActionRunnerTest, CentreAndRestoreActOnTheFocusedWindow) {
    runner.run(ActionID::center);
    EXPECT_EQ(desktop.frame(window), (Rect{-1070, -405, 640, 480}));

    runner.run(ActionID::restore);
    EXPECT_EQ(desktop.frame(window), kStart);

    runner.run(ActionID::restore);
    EXPECT_EQ(desktop.beeps(), 1);
}

TEST_F(ActionRunnerTest, NextAndPreviousDisplayMoveInOppositeDirections) {
    const Screen primary = desktop.displays().screens().front();
    const Screen third = desktop.addScreen({.frame = {1280, -70, 1440, 900}});

    runner.run(ActionID::nextDisplay);
    EXPECT_EQ(geo.screen(desktop.frame(window)), primary);

    runner.run(ActionID::previousDisplay);
    runner.run(ActionID::previousDisplay);
    EXPECT_EQ(geo.screen(desktop.frame(window)), third);
}

TEST_F(ActionRunnerTest, NothingRunsWhilePaused) {
    runtime.paused = true;
    desktop.trust().trusted = false;

    for (const ActionID action : ActionID::allCases)
        runner.run(action);

    EXPECT_TRUE(desktop.takeRequests().empty());
    EXPECT_EQ(desktop.trust().promptCalls, 0);
    EXPECT_EQ(desktop.beeps(), 0);
}

TEST_F(ActionRunnerTest, WithoutPermissionThePromptIsShownInstead) {
    desktop.trust().trusted = false;

    runner.run(ActionID::maximize);
    runner.run(ActionID::zone6);

    EXPECT_EQ(desktop.trust().prompts, 2);
    EXPECT_TRUE(desktop.takeRequests().empty());
    EXPECT_EQ(desktop.frame(window), kStart);
}

TEST_F(ActionRunnerTest, PermissionGrantedLaterTakesEffectAtOnce) {
    desktop.trust().trusted = false;
    runner.run(ActionID::maximize);
    desktop.trust().trusted = true;

    runner.run(ActionID::maximize);

    EXPECT_EQ(desktop.frame(window), kUsable);
    EXPECT_EQ(desktop.trust().promptCalls, 1);
}

TEST_F(ActionRunnerTest, AnActionThatHasMovedAWindowIsDone) {
    for (const ActionID action : {ActionID::zone1, ActionID::leftHalf, ActionID::center,
                                  ActionID::nextDisplay, ActionID::arrangeAll, ActionID::restore})
        EXPECT_EQ(runner.run(action), Outcome::Done) << ActionID(action).title();
}

TEST_F(ActionRunnerTest, AnActionThatMovesNothingSaysWhy) {
    EXPECT_EQ(runner.run(ActionID::zone6), Outcome::ZoneDisabled);
    EXPECT_EQ(runner.run(ActionID::restore), Outcome::NothingToRestore);
    desktop.removeScreen(desktop.displays().screens().back().id);
    EXPECT_EQ(runner.run(ActionID::previousDisplay), Outcome::NoOtherDisplay);
    runtime.paused = true;
    EXPECT_EQ(runner.run(ActionID::leftHalf), Outcome::Paused);
    runtime.paused = false;
    desktop.trust().trusted = false;
    EXPECT_EQ(runner.run(ActionID::leftHalf), Outcome::NotTrusted);
}

TEST_F(ActionRunnerTest, WithoutAWindowThatMayBeMovedThereIsNoWindow) {
    settings.ignoredApps = {"org.example.editor"};

    for (const ActionID action : {ActionID::zone1, ActionID::leftHalf, ActionID::center,
                                  ActionID::nextDisplay, ActionID::restore, ActionID::arrangeAll})
        EXPECT_EQ(runner.run(action), Outcome::NoWindow) << ActionID(action).title();
}

TEST_F(ActionRunnerTest, ArrangingWithoutEnabledZonesSaysSo) {
    for (Zone& zone : settings.zones)
        zone.enabled = false;

    EXPECT_EQ(runner.run(ActionID::arrangeAll), Outcome::ZoneDisabled);
}

TEST_F(ActionRunnerTest, AWindowThatTheDesktopTilesIsRefused) {
    desktop.window(window).isTiled = true;

    for (const ActionID action :
         {ActionID::zone1, ActionID::leftHalf, ActionID::center, ActionID::nextDisplay, ActionID::arrangeAll})
        EXPECT_EQ(runner.run(action), Outcome::Refused) << ActionID(action).title();
}

TEST_F(ActionRunnerTest, ARestoreOfAWindowThatTheDesktopTilesIsRefused) {
    runner.run(ActionID::leftHalf);
    desktop.window(window).isTiled = true;

    EXPECT_EQ(runner.run(ActionID::restore), Outcome::Refused);
}

TEST_F(ActionRunnerTest, ArrangingIsDoneIfOneWindowHasMoved) {
    desktop.window(window).isTiled = true;
    static_cast<void>(desktop.openWindow("org.example.other", kStart));

    EXPECT_EQ(runner.run(ActionID::arrangeAll), Outcome::Done);
}

TEST(PermissionsTest, TrustIsQueriedOnEveryCall) {
    sim::SimTrust trust;
    Permissions permissions{trust};
    EXPECT_TRUE(permissions.isTrusted());

    trust.trusted = false;
    EXPECT_FALSE(permissions.isTrusted());
    EXPECT_EQ(trust.promptCalls, 0);
}

TEST(PermissionsTest, PromptAndOpenSettingsAreForwardedToTheSystem) {
    sim::SimTrust trust;
    trust.trusted = false;
    Permissions permissions{trust};

    permissions.prompt();
    permissions.openSettings();
    permissions.openSettings();

    EXPECT_EQ(trust.prompts, 1);
    EXPECT_EQ(trust.settingsOpened, 2);
}

} // namespace
} // namespace tessarel
