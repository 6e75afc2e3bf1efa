// SPDX-License-Identifier: MIT

#include "app/settings_follower.h"

#include "app/app_delegate.h"
#include "model/settings/settings_codec.h"
#include "platform/sim/sim_desktop.h"
#include "support/settings_window_record.h"
#include "support/sim_ports.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tessarel {
namespace {

using namespace std::chrono_literals;

constexpr std::string_view kBroken = R"({"gap": 8, "mar)";

class SettingsFollowerTest : public testing::Test {
protected:
    sim::SimDesktop desktop;
    sim::SimPreferencesStorage& storage = desktop.preferencesStorage();
    Store store{desktop.preferences()};
    int taken = 0;
    std::optional<SettingsFollower> follower;

    SettingsFollowerTest() {
        follower.emplace(store, desktop.preferences(), desktop.mainQueue(), [this] { ++taken; });
    }

    void edit(std::string_view document) { storage.edit(Store::key, document); }
    std::string document() { return storage.documents[std::string(Store::key)]; }
    AppSettings stored() { return decodeSettings(document()).value(); }
};

TEST_F(SettingsFollowerTest, AChangeFromOutsideIsTakenUpAtOnce) {
    desktop.advance(0s);

    edit(R"({"gap": 8})");
    desktop.advance(0s);

    EXPECT_EQ(store.settings.gap, 8);
    EXPECT_EQ(taken, 1);
}

TEST_F(SettingsFollowerTest, AChangeBeforeTheLoopRunsIsTakenUp) {
    edit(R"({"gap": 8})");
    EXPECT_EQ(store.settings.gap, 0);

    desktop.advance(0s);

    EXPECT_EQ(store.settings.gap, 8);
    EXPECT_EQ(taken, 1);
}

TEST_F(SettingsFollowerTest, ItsOwnSavesAreNotTakenUp) {
    desktop.advance(0s);

    store.settings.gap = 8;
    store.save();
    desktop.advance(0s);

    EXPECT_EQ(taken, 0);
    EXPECT_EQ(storage.writes, 1);
}

TEST_F(SettingsFollowerTest, AnIdleFollowerHasNothingToDo) {
    desktop.advance(0s);
    edit(R"({"gap": 8})");
    desktop.advance(0s);

    EXPECT_EQ(desktop.clock().waiting(), 0U);
}

TEST_F(SettingsFollowerTest, ABrokenDocumentIsIgnoredUntilItIsWhole) {
    desktop.advance(0s);

    edit(kBroken);
    desktop.advance(1h);
    EXPECT_EQ(taken, 0);
    EXPECT_EQ(document(), kBroken);

    edit(R"({"gap": 8, "margin": 2})");
    desktop.advance(0s);
    EXPECT_EQ(store.settings.margin, 2);
}

TEST_F(SettingsFollowerTest, ASaveWaitsForTheEditorAndThenMerges) {
    desktop.advance(0s);
    edit(kBroken);
    store.settings.edgeSnap = true;
    store.save();
    desktop.advance(SettingsFollower::kPatience - 1ms);
    EXPECT_EQ(document(), kBroken);

    edit(R"({"gap": 8, "margin": 2})");
    desktop.advance(0s);

    EXPECT_EQ(stored().margin, 2);
    EXPECT_TRUE(stored().edgeSnap);
    desktop.advance(1h);
    EXPECT_EQ(storage.writes, 1);
    EXPECT_TRUE(storage.rejected.empty());
}

TEST_F(SettingsFollowerTest, ASaveDoesNotWaitForeverForTheEditor) {
    desktop.advance(0s);
    edit(kBroken);
    store.settings.gap = 5;
    store.save();

    desktop.advance(SettingsFollower::kPatience);

    EXPECT_EQ(stored().gap, 5);
    EXPECT_EQ(storage.rejected[std::string(Store::key)], kBroken);
}

TEST_F(SettingsFollowerTest, FurtherSavesDoNotProlongTheWait) {
    desktop.advance(0s);
    edit(kBroken);
    for (const int gap : {1, 2, 3, 4, 5}) {
        EXPECT_EQ(document(), kBroken);
        store.settings.gap = gap;
        store.save();
        desktop.advance(SettingsFollower::kPatience / 5);
    }

    EXPECT_EQ(stored().gap, 5);
}

TEST_F(SettingsFollowerTest, ADocumentThatBreaksAgainIsWaitedForAgain) {
    desktop.advance(0s);
    for (const int gap : {5, 6}) {
        edit("{" + std::to_string(gap));
        store.settings.gap = gap;
        store.save();
        EXPECT_FALSE(decodeSettings(document()));
        desktop.advance(SettingsFollower::kPatience);
        EXPECT_EQ(stored().gap, gap);
    }
}

TEST_F(SettingsFollowerTest, TheEndOfTheProgramCompletesADelayedSave) {
    desktop.advance(0s);
    edit(kBroken);
    store.settings.gap = 5;
    store.save();

    follower.reset();

    EXPECT_EQ(stored().gap, 5);
    EXPECT_EQ(storage.rejected[std::string(Store::key)], kBroken);
}

/// The running program on a simulated desktop with one display and one window.
class FollowingProgramTest : public testing::Test {
protected:
    static constexpr Rect kSomewhere{200, 150, 640, 480};
    static constexpr std::uint32_t kKeyC = 8;
    static constexpr std::uint32_t kCommand = 256;

    FollowingProgramTest() {
        edit(R"({"hasOnboarded": true})");
        desktop.addScreen({.frame = {0, 0, 1440, 900}});
        window = desktop.openWindow("org.example.editor", kSomewhere);
        delegate.emplace(simPorts(desktop, copy), settingsWindow.factory());
        EXPECT_EQ(delegate->applicationDidFinishLaunching(), AppDelegate::Launch::Running);
        desktop.advance(0s);
    }

    void edit(std::string_view document) { desktop.preferencesStorage().edit(Store::key, document); }

    sim::SimDesktop desktop;
    sim::SimSingleInstance copy = desktop.makeCopy();
    sim::WindowId window{};
    SettingsWindowRecord settingsWindow;
    std::optional<AppDelegate> delegate;
};

TEST_F(FollowingProgramTest, AHotKeyFromOutsideIsClaimedAtOnce) {
    edit(R"({"hasOnboarded": true, "bindings": {"leftHalf": {"keyCode": 8, "mods": 256}}})");
    desktop.advance(0s);

    desktop.pressKeys(kKeyC, kCommand);

    EXPECT_EQ(desktop.frame(window), (Rect{0, 0, 720, 900}));
}

TEST_F(FollowingProgramTest, TheSettingsWindowShowsWhatHasCome) {
    delegate->applicationShouldHandleReopen();

    edit(R"({"hasOnboarded": true, "gap": 8})");
    desktop.advance(0s);
    EXPECT_EQ(settingsWindow.refreshed, 1);

    edit(R"({"hasOnboarded": true, "gap": 8.0})");
    desktop.advance(0s);
    EXPECT_EQ(settingsWindow.refreshed, 1) << "nothing has changed";
}

TEST_F(FollowingProgramTest, WhatHasComeIsNotSavedAgain) {
    delegate->applicationShouldHandleReopen();

    edit(R"({"hasOnboarded": true, "gap": 8})");
    desktop.advance(1h);

    EXPECT_EQ(desktop.preferencesStorage().writes, 0);
}

TEST_F(FollowingProgramTest, AChangeAtTheEndOfTheProgramIsIgnored) {
    edit(R"({"hasOnboarded": true, "gap": 8})");

    delegate.reset();
    desktop.advance(1h);

    EXPECT_EQ(desktop.preferencesStorage().writes, 0);
}

} // namespace
} // namespace tessarel
