#include "engine/action_runner.h"

#include "engine/engine_test.h"

#include <array>
#include <utility>

namespace tessarel {
namespace {

class ActionRunnerTest : public EngineTest {
protected:
    static constexpr Rect kStart{200, 150, 640, 480};

    ActionRunnerTest() { addScreen(); }

    sim::WindowId window = desktop.openWindow("org.example.editor", kStart);
};

TEST_F(ActionRunnerTest, FixedZonesGoToTheirPartOfTheScreen) {
    const std::array<std::pair<ActionID, Rect>, 5> expected{{{ActionID::leftHalf, {0, 25, 720, 875}},
                                                             {ActionID::rightHalf, {720, 25, 720, 875}},
                                                             {ActionID::topHalf, {0, 25, 1440, 438}},
                                                             {ActionID::bottomHalf, {0, 463, 1440, 438}},
                                                             {ActionID::maximize, {0, 25, 1440, 875}}}};
    for (const auto& [action, frame] : expected) {
        runner.run(action);
        EXPECT_EQ(desktop.frame(window), frame) << action.title();
    }
    EXPECT_TRUE(settings.appZones.empty());
}

TEST_F(ActionRunnerTest, MaximizeKeepsGapAndMarginAndIsNotRemembered) {
    settings.gap = 10;
    settings.margin = 8;
    settings.appZones = {{"org.example.editor", 3}};

    runner.run(ActionID::maximize);

    EXPECT_EQ(desktop.frame(window), (Rect{8, 33, 1424, 859}));
    EXPECT_EQ(settings.appZones.at("org.example.editor"), 3);
}

TEST_F(ActionRunnerTest, ZoneActionsUseTheUsersZonesAndAreRememberedByNumber) {
    runner.run(ActionID::zone1);
    EXPECT_EQ(desktop.frame(window), (Rect{0, 25, 480, 438}));
    EXPECT_EQ(settings.appZones.at("org.example.editor"), 0);

    settings.zones[8] = kRightHalf;
    runner.run(ActionID::zone9);
    EXPECT_EQ(desktop.frame(window), (Rect{720, 25, 720, 875}));
    EXPECT_EQ(settings.appZones.at("org.example.editor"), 8);
}

TEST_F(ActionRunnerTest, ADisabledZoneDoesNothing) {
    ASSERT_FALSE(settings.zones[5].enabled);

    runner.run(ActionID::zone6);

    EXPECT_EQ(desktop.frame(window), kStart);
    EXPECT_TRUE(desktop.takeRequests().empty());
}

TEST_F(ActionRunnerTest, AZoneBeyondTheListDoesNothing) {
    settings.zones[8] = kRightHalf;
    settings.zones.resize(2);

    runner.run(ActionID::zone9);

    EXPECT_EQ(desktop.frame(window), kStart);
}

TEST_F(ActionRunnerTest, CentreAndRestoreActOnTheFocusedWindow) {
    runner.run(ActionID::center);
    EXPECT_EQ(desktop.frame(window), (Rect{400, 223, 640, 480}));

    runner.run(ActionID::restore);
    EXPECT_EQ(desktop.frame(window), kStart);

    runner.run(ActionID::restore);
    EXPECT_EQ(desktop.beeps(), 1);
}

TEST_F(ActionRunnerTest, NextAndPreviousDisplayGoOppositeWays) {
    const Screen second = desktop.addScreen({.frame = {1440, 0, 1440, 900}});
    const Screen third = desktop.addScreen({.frame = {2880, 0, 1440, 900}});

    runner.run(ActionID::nextDisplay);
    EXPECT_EQ(geo.screen(desktop.frame(window)), second);

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
    EXPECT_EQ(desktop.trust().prompts, 0);
    EXPECT_EQ(desktop.beeps(), 0);
}

TEST_F(ActionRunnerTest, WithoutPermissionItIsAskedForInstead) {
    desktop.trust().trusted = false;

    runner.run(ActionID::maximize);
    runner.run(ActionID::zone6);

    EXPECT_EQ(desktop.trust().prompts, 2);
    EXPECT_TRUE(desktop.takeRequests().empty());
    EXPECT_EQ(desktop.frame(window), kStart);
}

TEST_F(ActionRunnerTest, PermissionGivenLaterIsSeenAtOnce) {
    desktop.trust().trusted = false;
    runner.run(ActionID::maximize);
    desktop.trust().trusted = true;

    runner.run(ActionID::maximize);

    EXPECT_EQ(desktop.frame(window), (Rect{0, 25, 1440, 875}));
    EXPECT_EQ(desktop.trust().prompts, 1);
}

TEST(RuntimeTest, ARunStartsUnpaused) {
    EXPECT_FALSE(Runtime{}.paused);
}

TEST(PermissionsTest, TrustIsAskedOfTheSystemEveryTime) {
    sim::SimTrust trust;
    Permissions permissions{trust};
    EXPECT_TRUE(permissions.isTrusted());

    trust.trusted = false;
    EXPECT_FALSE(permissions.isTrusted());
    EXPECT_EQ(trust.prompts, 0);
}

TEST(PermissionsTest, PromptAndSettingsAreHandedToTheSystem) {
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
