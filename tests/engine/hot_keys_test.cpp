// SPDX-License-Identifier: MIT

#include "engine/hot_keys.h"

#include "engine/engine_test.h"

#include <algorithm>
#include <limits>
#include <set>
#include <utility>

namespace tessarel {
namespace {

class HotKeysTest : public EngineTest {
protected:
    static constexpr std::uint32_t kCtrlOpt = 6144;

    HotKeysTest() { addScreens(); }

    /// Returns the ids of the registered hot keys, ascending.
    [[nodiscard]] std::vector<std::uint32_t> registeredIds() const {
        std::vector<std::uint32_t> ids;
        for (const HotKeyRequest& request : registered())
            ids.push_back(request.hotKey.id);
        std::sort(ids.begin(), ids.end());
        return ids;
    }
    [[nodiscard]] std::vector<HotKeyRequest> registered() const { return keys.registered(); }

    sim::SimHotKeys& keys = desktop.hotKeys();
    sim::WindowId window = desktop.openWindow("org.example.editor", kStart);
};

TEST_F(HotKeysTest, EveryBoundActionHasAHotKeyUnlessItsZoneIsDisabled) {
    hotKeys.registerAll();

    // Five of the nine default zones are enabled.
    EXPECT_EQ(registeredIds(),
              (std::vector<std::uint32_t>{0, 1, 2, 3, 4, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18}));
}

TEST_F(HotKeysTest, KeysAndModifiersAreRegisteredUnchangedWithTheProgramsSignature) {
    settings.bindings = {{"maximize", {36, 6144}}};

    hotKeys.registerAll();

    EXPECT_EQ(registered(), (std::vector<HotKeyRequest>{{36, 6144, {0x47575744, 13}}}));
}

TEST_F(HotKeysTest, APressRunsItsAction) {
    hotKeys.registerAll();

    EXPECT_TRUE(keys.press(36, kCtrlOpt));
    EXPECT_EQ(desktop.frame(window), kUsable);

    EXPECT_TRUE(keys.press(51, kCtrlOpt));
    EXPECT_EQ(desktop.frame(window), kStart);
}

TEST_F(HotKeysTest, TheKeysOfADisabledZoneReachOtherPrograms) {
    settings.zones[2].enabled = false;

    hotKeys.registerAll();

    EXPECT_FALSE(keys.press(20, kCtrlOpt));
    EXPECT_TRUE(keys.holdByAnotherProgram(20, kCtrlOpt));
}

TEST_F(HotKeysTest, OfTwoActionsWithTheSameKeysTheFirstGetsThem) {
    settings.bindings = {{"leftHalf", {123, 6144}}, {"center", {123, 6144}}};

    hotKeys.registerAll();

    EXPECT_EQ(registeredIds(), (std::vector<std::uint32_t>{9}));
    keys.press(123, kCtrlOpt);
    EXPECT_EQ(desktop.frame(window), kLeft);
}

TEST_F(HotKeysTest, RegisteringTwiceLeavesOneHotKeyPerActionAndOneHandler) {
    hotKeys.registerAll();
    const auto once = registered();
    hotKeys.registerAll();

    EXPECT_EQ(registered(), once);
    EXPECT_EQ(keys.handlersInstalled(), 1);
    keys.press(51, kCtrlOpt); // nothing to restore, so each run of the action sounds one alert
    EXPECT_EQ(desktop.beeps(), 1);
}

TEST_F(HotKeysTest, ChangedBindingsReplaceTheOldOnes) {
    settings.bindings = {{"maximize", {36, 6144}}, {"center", {8, 6144}}};
    hotKeys.registerAll();

    settings.bindings = {{"center", {36, 6144}}};
    hotKeys.registerAll();

    EXPECT_EQ(registered(), (std::vector<HotKeyRequest>{{36, 6144, {0x47575744, 14}}}));
}

TEST_F(HotKeysTest, AnUnboundActionHasNoHotKey) {
    settings.bindings.clear();

    hotKeys.registerAll();

    EXPECT_TRUE(registered().empty());
}

TEST_F(HotKeysTest, ACombinationOfAnotherProgramIsTakenUntilARetryFindsItFree) {
    auto other = keys.holdByAnotherProgram(36, kCtrlOpt);
    hotKeys.registerAll();
    EXPECT_EQ(registered().size(), 14U);
    EXPECT_TRUE(hotKeys.isTaken(ActionID::maximize));
    EXPECT_FALSE(hotKeys.isTaken(ActionID::center));
    int changes = 0;
    const auto observer = hotKeys.onTakenChange([&] { ++changes; });
    hotKeys.retryTaken();
    EXPECT_TRUE(hotKeys.isTaken(ActionID::maximize));
    EXPECT_EQ(changes, 0);

    other.reset();
    EXPECT_FALSE(keys.press(36, kCtrlOpt)) << "no system reports that it has become free";
    hotKeys.retryTaken();

    EXPECT_TRUE(keys.press(36, kCtrlOpt));
    EXPECT_FALSE(hotKeys.isTaken(ActionID::maximize));
    EXPECT_EQ(changes, 1);
}

TEST_F(HotKeysTest, RegisteringTriesTakenCombinationsAgainAndReportsIt) {
    auto other = keys.holdByAnotherProgram(36, kCtrlOpt);
    hotKeys.registerAll();
    int changes = 0;
    const auto observer = hotKeys.onTakenChange([&] { ++changes; });
    other.reset();

    hotKeys.registerAll();

    EXPECT_FALSE(hotKeys.isTaken(ActionID::maximize));
    EXPECT_EQ(changes, 1);
}

TEST_F(HotKeysTest, ACombinationThatAnotherActionHasIsNotTaken) {
    settings.bindings = {{"leftHalf", {123, 6144}}, {"center", {123, 6144}}, {"restore", {4000, 6144}}};

    hotKeys.registerAll();

    for (const ActionID action : {ActionID::leftHalf, ActionID::center, ActionID::restore})
        EXPECT_FALSE(hotKeys.isTaken(action));
}

TEST_F(HotKeysTest, BindingsThatCannotBeRegisteredAreSkipped) {
    constexpr std::int64_t kTooLarge = std::int64_t{1} << 32;
    settings.bindings = {{"zone1", {-1, 6144}},
                         {"zone2", {18, -6144}},
                         {"zone3", {kTooLarge + 18, 6144}},
                         {"zone4", {18, kTooLarge + 6144}},
                         {"zone5", {std::numeric_limits<std::int64_t>::min(), 0}},
                         {"leftHalf", {kTooLarge - 1, 6144}},
                         {"rightHalf", {18, kTooLarge - 1}},
                         {"maximize", {18, 6144}}};

    hotKeys.registerAll();

    EXPECT_EQ(registeredIds(), (std::vector<std::uint32_t>{13}));
}

TEST_F(HotKeysTest, ZonesMissingFromTheSettingsCountAsDisabled) {
    settings.zones.resize(1);

    hotKeys.registerAll();

    EXPECT_EQ(registeredIds(), (std::vector<std::uint32_t>{0, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18}));
}

TEST_F(HotKeysTest, EveryIdRunsTheActionAtItsPosition) {
    desktop.addScreen({.frame = {1280, 0, 1440, 900}});
    settings.zones.clear();
    for (int n = 0; n < 9; ++n)
        settings.zones.push_back({true, n * 5.0, 0, 31, 50});
    const auto placeSomewhere = [&] {
        desktop.drag(window, kStart);
        engine.snapFocused({true, 10, 10, 30, 30}, {});
    };
    std::set<std::pair<double, double>> places;
    for (std::uint32_t id = 0; id < ActionID::allCases.size(); ++id) {
        placeSomewhere();
        runner.run(ActionID::allCases[id]);
        const Rect expected = desktop.frame(window);
        placeSomewhere();

        hotKeys.handle(id);

        EXPECT_EQ(desktop.frame(window), expected) << id;
        places.emplace(expected.midX(), expected.midY());
    }
    EXPECT_EQ(places.size(), 17U) << "arranging has the centre of zone 1, and centring that of maximizing";
}

TEST_F(HotKeysTest, IdsBeyondTheActionsDoNothing) {
    for (const std::uint32_t id : {19U, 20U, 0xffffffffU})
        hotKeys.handle(id);

    EXPECT_TRUE(desktop.takeRequests().empty());
}

TEST_F(HotKeysTest, WhilePausedTheKeysStayRegisteredAndDoNothing) {
    hotKeys.registerAll();
    runtime.paused = true;

    EXPECT_TRUE(keys.press(36, kCtrlOpt));

    EXPECT_EQ(desktop.frame(window), kStart);
}

TEST_F(HotKeysTest, DestroyingHotKeysReleasesTheKeys) {
    {
        HotKeys shortLived{desktop.hotKeys(), runner, store};
        shortLived.registerAll();
        ASSERT_FALSE(registered().empty());
    }
    EXPECT_TRUE(registered().empty());
    EXPECT_FALSE(keys.press(36, kCtrlOpt));
}

} // namespace
} // namespace tessarel
