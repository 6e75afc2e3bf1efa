// SPDX-License-Identifier: MIT

#include "app/app_delegate.h"

#include "app/main_menu.h"
#include "model/action_id.h"
#include "model/presets.h"
#include "platform/sim/sim_desktop.h"
#include "support/sim_ports.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace tessarel {
namespace {

using Launch = AppDelegate::Launch;
using Kind = SingleInstancePort::Reaction::Kind;

constexpr std::uint32_t kVirtual1 = 18;
constexpr std::uint32_t kCtrlOpt = 4096 + 2048;

class AppDelegateTest : public testing::Test {
protected:
    AppDelegateTest() { desktop.preferences().setData(Store::key, R"({"hasOnboarded": true})"); }

    [[nodiscard]] Ports ports(SingleInstancePort& instance) { return simPorts(desktop, instance); }

    sim::SimDesktop desktop;
    sim::SimSingleInstance copy = desktop.makeCopy();
    std::unique_ptr<AppDelegate> delegate = std::make_unique<AppDelegate>(ports(copy), nullptr);
};

TEST_F(AppDelegateTest, LaunchingClaimsTheHotKeysOfAllActionsExceptDisabledZones) {
    EXPECT_EQ(delegate->applicationDidFinishLaunching(), Launch::Running);

    EXPECT_EQ(desktop.hotKeys().registered().size(), 15U);
    EXPECT_EQ(desktop.hotKeys().handlersInstalled(), 1);
}

TEST_F(AppDelegateTest, WithTrustNoPromptIsRequested) {
    ASSERT_EQ(delegate->applicationDidFinishLaunching(), Launch::Running);
    desktop.advance(std::chrono::seconds(1));

    EXPECT_EQ(desktop.trust().promptCalls, 0);
}

TEST_F(AppDelegateTest, APermissionThatTurnsOutToBeMissingAfterTheLaunchIsAskedFor) {
    ASSERT_EQ(delegate->applicationDidFinishLaunching(), Launch::Running);
    desktop.advance(std::chrono::seconds(0));
    desktop.trust().trusted = false;

    desktop.trust().lost.send();

    EXPECT_EQ(desktop.trust().prompts, 1);
}

TEST_F(AppDelegateTest, LaunchingSetsTheMainMenu) {
    ASSERT_EQ(delegate->applicationDidFinishLaunching(), Launch::Running);

    EXPECT_EQ(desktop.mainMenu().menus, mainMenu());
}

TEST_F(AppDelegateTest, NothingIsClaimedBeforeLaunching) {
    EXPECT_TRUE(desktop.hotKeys().registered().empty());
    EXPECT_EQ(desktop.hotKeys().handlersInstalled(), 0);
}

TEST_F(AppDelegateTest, AHotKeyPutsTheFocusedWindowIntoItsZone) {
    desktop.addScreen({.frame = {0, 0, 1200, 800}});
    const auto editor = desktop.openWindow("org.example.editor", {200, 150, 640, 480});
    ASSERT_EQ(delegate->applicationDidFinishLaunching(), Launch::Running);

    EXPECT_TRUE(desktop.hotKeys().press(kVirtual1, kCtrlOpt));

    EXPECT_EQ(desktop.frame(editor), (Rect{0, 0, 400, 400}));
}

TEST_F(AppDelegateTest, TheStoreOfTheRunningProgramIsShared) {
    desktop.preferences().setData(Store::key, R"({"gap": 8, "hasOnboarded": true})");
    ASSERT_EQ(delegate->applicationDidFinishLaunching(), Launch::Running);

    EXPECT_EQ(Store::shared().settings.gap, 8);
}

TEST_F(AppDelegateTest, LaunchingWritesNoSettings) {
    const int before = desktop.preferencesStorage().writes;

    ASSERT_EQ(delegate->applicationDidFinishLaunching(), Launch::Running);

    EXPECT_EQ(desktop.preferencesStorage().writes, before);
}

TEST_F(AppDelegateTest, ChangedSettingsClaimTheNewHotKeys) {
    ASSERT_EQ(delegate->applicationDidFinishLaunching(), Launch::Running);
    Store& store = Store::shared();

    store.settings.bindings.clear();
    store.setBinding(Binding{kVirtual1, kCtrlOpt}, ActionID::center);
    EXPECT_EQ(desktop.hotKeys().registered().size(), 15U);
    store.saveAndNotify();

    ASSERT_EQ(desktop.hotKeys().registered().size(), 1U);
    EXPECT_EQ(desktop.hotKeys().registered()[0].keyCode, kVirtual1);
    EXPECT_EQ(desktop.hotKeys().handlersInstalled(), 1);
}

TEST_F(AppDelegateTest, ChangedSettingsUpdateTheStatusIcon) {
    ASSERT_EQ(delegate->applicationDidFinishLaunching(), Launch::Running);
    ASSERT_EQ(desktop.statusItem().symbol, "rectangle.3.group");
    desktop.statusItem().symbols.erase("rectangle.3.group");

    Store::shared().saveAndNotify();

    EXPECT_EQ(desktop.statusItem().symbol, "square.grid.2x2");
}

TEST_F(AppDelegateTest, APauseIsNotKeptAcrossRestarts) {
    desktop.addScreen({.frame = {0, 0, 1200, 800}});
    const auto editor = desktop.openWindow("org.example.editor", {200, 150, 640, 480});
    ASSERT_EQ(delegate->applicationDidFinishLaunching(), Launch::Running);
    MenuItem pause;
    pause.command = MenuCommand::TogglePause;
    delegate->itemSelected(pause);
    Store::shared().save();
    ASSERT_TRUE(desktop.statusItem().appearsDisabled);
    delegate.reset();

    delegate = std::make_unique<AppDelegate>(ports(copy), nullptr);
    ASSERT_EQ(delegate->applicationDidFinishLaunching(), Launch::Running);

    EXPECT_FALSE(desktop.statusItem().appearsDisabled);
    desktop.hotKeys().press(kVirtual1, kCtrlOpt);
    EXPECT_EQ(desktop.frame(editor), (Rect{0, 0, 400, 400}));
}

TEST_F(AppDelegateTest, WithoutASettingsWindowItsCommandsDoNothing) {
    ASSERT_EQ(delegate->applicationDidFinishLaunching(), Launch::Running);
    MenuItem item;

    delegate->applicationShouldHandleReopen();
    item.command = MenuCommand::OpenSettings;
    delegate->itemSelected(item);
    item.command = MenuCommand::ApplyLayout;
    item.tag = 1;
    delegate->itemSelected(item);

    EXPECT_EQ(Store::shared().settings.zones, Presets::all()[1].zones);
}

TEST_F(AppDelegateTest, WithoutTrustThePromptIsShownOnceAndTheHotKeysAreStillClaimed) {
    desktop.trust().trusted = false;

    EXPECT_EQ(delegate->applicationDidFinishLaunching(), Launch::Running);
    desktop.advance(std::chrono::seconds(0));

    EXPECT_EQ(desktop.trust().prompts, 1);
    EXPECT_EQ(desktop.trust().settingsOpened, 0);
    EXPECT_EQ(desktop.hotKeys().registered().size(), 15U);
}

TEST_F(AppDelegateTest, ASecondCopyEndsAtOnceAndLeavesTheFirstAlone) {
    ASSERT_EQ(delegate->applicationDidFinishLaunching(), Launch::Running);
    desktop.trust().trusted = false;
    Store& store = Store::shared();
    sim::SimSingleInstance secondCopy = desktop.makeCopy();
    AppDelegate second(ports(secondCopy), nullptr);

    EXPECT_EQ(second.applicationDidFinishLaunching(), Launch::AnotherCopyRuns);

    EXPECT_EQ(&Store::shared(), &store);
    EXPECT_EQ(desktop.hotKeys().registered().size(), 15U);
    EXPECT_EQ(desktop.hotKeys().handlersInstalled(), 1);
    EXPECT_EQ(desktop.mouse().monitored().size(), 4U);
    EXPECT_EQ(desktop.trust().promptCalls, 0);
}

TEST_F(AppDelegateTest, ASecondCopyWhoseFirstDoesNotReactFailsAndSaysWhy) {
    ASSERT_EQ(delegate->applicationDidFinishLaunching(), Launch::Running);
    copy.holder().reaction = {Kind::Missing, "the running copy does not react"};
    sim::SimSingleInstance secondCopy = desktop.makeCopy();
    AppDelegate second(ports(secondCopy), nullptr);

    EXPECT_EQ(second.applicationDidFinishLaunching(), Launch::Failed);

    EXPECT_EQ(second.launchFailure(), "the running copy does not react");
    EXPECT_EQ(desktop.hotKeys().handlersInstalled(), 1);
}

TEST_F(AppDelegateTest, ACopyThatQuitsDuringTheStartOfAnotherIsReplaced) {
    const auto quitting = copy.claim([] {}, [] {});
    copy.holder().reaction.kind = Kind::Ended;
    sim::SimSingleInstance secondCopy = desktop.makeCopy();
    AppDelegate second(ports(secondCopy), nullptr);

    EXPECT_EQ(second.applicationDidFinishLaunching(), Launch::Running);

    EXPECT_EQ(desktop.hotKeys().registered().size(), 15U);
}

TEST_F(AppDelegateTest, ACopyThatLosesTheDesktopQuits) {
    ASSERT_EQ(delegate->applicationDidFinishLaunching(), Launch::Running);
    ASSERT_EQ(desktop.ownApplication().terminations, 0);

    copy.holder().lost();

    EXPECT_EQ(desktop.ownApplication().terminations, 1);
}

TEST_F(AppDelegateTest, DestroyingTheDelegateReleasesTheHotKeysAndTheDesktop) {
    ASSERT_EQ(delegate->applicationDidFinishLaunching(), Launch::Running);

    delegate.reset();

    EXPECT_TRUE(desktop.hotKeys().registered().empty());
    EXPECT_FALSE(desktop.hotKeys().press(kVirtual1, kCtrlOpt));
    sim::SimSingleInstance next = desktop.makeCopy();
    EXPECT_EQ(AppDelegate(ports(next), nullptr).applicationDidFinishLaunching(), Launch::Running);
}

TEST_F(AppDelegateTest, ADraggedWindowGoesIntoAZone) {
    desktop.addScreen({.frame = {0, 0, 1200, 800}});
    const auto editor = desktop.openWindow("org.example.editor", {200, 150, 640, 480});
    ASSERT_EQ(delegate->applicationDidFinishLaunching(), Launch::Running);

    desktop.mouse().hold(kShiftFlag);
    desktop.mouse().moveTo({500, 160});
    desktop.mouse().press();
    desktop.mouse().moveTo({400, 170});
    desktop.advance(std::chrono::milliseconds(30));
    desktop.mouse().moveTo({100, 100});
    desktop.mouse().release();
    desktop.advance(std::chrono::milliseconds(30));

    EXPECT_EQ(desktop.frame(editor), (Rect{0, 0, 400, 400}));
    EXPECT_EQ(Store::shared().settings.appZones.at("org.example.editor"), 0);
}

TEST_F(AppDelegateTest, LaunchingChecksForUpdatesWhenDueAndFailsSilently) {
    ASSERT_EQ(delegate->applicationDidFinishLaunching(), Launch::Running);
    desktop.advance(std::chrono::seconds(0));
    ASSERT_EQ(desktop.urlLoading().requests.size(), 1U);

    desktop.urlLoading().answer(0, {});

    EXPECT_TRUE(desktop.alerts().shown.empty());
}

TEST_F(AppDelegateTest, LaunchingDoesNotCheckForUpdatesWhenNotDue) {
    desktop.preferences().setData(Store::key, R"({"hasOnboarded": true, "lastUpdateCheck": 1799990000})");
    ASSERT_EQ(delegate->applicationDidFinishLaunching(), Launch::Running);

    desktop.advance(std::chrono::hours(72));

    EXPECT_TRUE(desktop.urlLoading().requests.empty());
}

TEST_F(AppDelegateTest, AProgramThatEndsAtOnceDoesNotCheckForUpdates) {
    ASSERT_EQ(delegate->applicationDidFinishLaunching(), Launch::Running);

    delegate.reset();
    desktop.advance(std::chrono::seconds(1));

    EXPECT_TRUE(desktop.urlLoading().requests.empty());
}

TEST_F(AppDelegateTest, ANewWindowOfARememberedApplicationOpensInItsZone) {
    desktop.addScreen({.frame = {0, 0, 1200, 800}});
    desktop.preferences().setData(Store::key,
                                  R"({"hasOnboarded": true, "appZones": {"org.example.editor": 1}})");
    ASSERT_EQ(delegate->applicationDidFinishLaunching(), Launch::Running);

    const auto editor = desktop.openWindow("org.example.editor", {200, 150, 640, 480});
    desktop.advance(std::chrono::seconds(1));

    EXPECT_EQ(desktop.frame(editor), (Rect{400, 0, 400, 400}));
}

TEST_F(AppDelegateTest, DestroyingTheDelegateStopsWatchingTheMouse) {
    ASSERT_EQ(delegate->applicationDidFinishLaunching(), Launch::Running);
    ASSERT_EQ(desktop.mouse().monitored().size(), 4U);

    delegate.reset();

    EXPECT_TRUE(desktop.mouse().monitored().empty());
    EXPECT_FALSE(desktop.statusItem().isUp());
}

} // namespace
} // namespace tessarel
