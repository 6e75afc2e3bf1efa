// SPDX-License-Identifier: MIT

#include "app/recorded_ports.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <memory>

namespace tessarel {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using Launch = AppDelegate::Launch;

/// Fixture: records the order of the program's calls to its ports. `settings` is the stored document.
class OrderTest : public testing::Test {
protected:
    explicit OrderTest(const char* settings) : record(desktop, settings) {}

    void launch() { ASSERT_EQ(delegate.applicationDidFinishLaunching(), Launch::Running); }
    /// Runs the loop once and returns the calls that the program made in it.
    RecordedPorts::Order turn() {
        static_cast<void>(record.takeOrder());
        desktop.advance(0s);
        return record.takeOrder();
    }
    RecordedPorts::Order choose(MenuCommand command, int tag = 0) {
        static_cast<void>(record.takeOrder());
        MenuItem item;
        item.command = command;
        item.tag = tag;
        delegate.itemSelected(item);
        return record.takeOrder();
    }

    sim::SimDesktop desktop;
    RecordedPorts record;
    AppDelegate delegate{record.ports(), record.settingsWindow()};
};

class LaunchOrderTest : public OrderTest {
protected:
    LaunchOrderTest() : OrderTest(R"({"hasOnboarded": true})") {}
};

class FirstLaunchOrderTest : public OrderTest {
protected:
    FirstLaunchOrderTest() : OrderTest("{}") {}

    /// Presses the second button of the welcome and returns the calls that follow.
    RecordedPorts::Order pressOpenSettings() {
        EXPECT_TRUE(record.alerts().close(1));
        return record.takeOrder();
    }
};

TEST_F(LaunchOrderTest, HotKeysAreClaimedEarlyAndNothingIsPromptedBeforeTheLoopRuns) {
    launch();

    EXPECT_THAT(record.takeOrder(),
                ElementsAre("claim the desktop", "read settings", "set main menu", "create status item",
                            "show icon", "listen to hot keys", "claim hot keys", "watch the mouse",
                            "watch programs", "list programs"));
}

TEST_F(LaunchOrderTest, TheUpdateCheckStartsBeforeThePromptOnceTheLoopRuns) {
    launch();

    EXPECT_THAT(turn(),
                ElementsAre("watch settings", "read settings", "ask the web", "ask for trust", "prompt"));
}

TEST_F(LaunchOrderTest, ASecondCopyOnlyTriesToClaimTheDesktop) {
    const auto other = desktop.makeCopy().claim([] {}, [] {});

    EXPECT_EQ(delegate.applicationDidFinishLaunching(), Launch::AnotherCopyRuns);

    EXPECT_THAT(record.takeOrder(), ElementsAre("claim the desktop"));
    desktop.advance(1s);
    EXPECT_THAT(record.takeOrder(), ElementsAre());
}

TEST_F(LaunchOrderTest, ChangedSettingsClaimTheHotKeysBeforeTheIconIsUpdated) {
    launch();
    static_cast<void>(record.takeOrder());

    Store::shared().tessarelSettingsChanged.send();

    EXPECT_THAT(record.takeOrder(), ElementsAre("list programs", "claim hot keys", "show icon"));
}

TEST_F(LaunchOrderTest, SettingsThatChangeDuringTheLaunchDoNotClaimTheHotKeysTwice) {
    record.whileListingPrograms = [&] {
        record.whileListingPrograms = nullptr;
        Store::shared().tessarelSettingsChanged.send();
    };

    launch();

    const auto order = record.takeOrder();
    EXPECT_EQ(std::count(order.begin(), order.end(), "claim hot keys"), 1)
        << "the settings are observed only after the placer has started";
}

TEST_F(LaunchOrderTest, SettingsAreObservedBeforeTheUpdateCheckStarts) {
    launch();
    static_cast<void>(record.takeOrder());
    record.whileAskingTheWeb = [] { Store::shared().tessarelSettingsChanged.send(); };

    const auto order = turn();

    EXPECT_THAT(order, testing::IsSupersetOf({"ask the web", "claim hot keys"}));
    EXPECT_LT(std::ranges::find(order, "ask the web"), std::ranges::find(order, "claim hot keys"));
}

TEST_F(FirstLaunchOrderTest, NoPromptIsShownBeforeTheLoopRuns) {
    launch();

    EXPECT_THAT(record.takeOrder(),
                ElementsAre("claim the desktop", "read settings", "set main menu", "create status item",
                            "show icon", "listen to hot keys", "claim hot keys", "watch the mouse",
                            "watch programs", "list programs"));
}

TEST_F(FirstLaunchOrderTest, TheWelcomeIsSavedBeforeThePromptAndTheSettingsWindowComesLast) {
    launch();

    EXPECT_THAT(turn(), ElementsAre("watch settings", "read settings", "ask the web", "come to the front",
                                    "Welcome to Tessarel"));
    EXPECT_THAT(pressOpenSettings(), ElementsAre("read settings", "save settings", "prompt",
                                                 "make settings window", "show settings window"));
}

TEST_F(LaunchOrderTest, GrantingAccessPromptsAndThenOpensTheSystemsSettings) {
    launch();

    EXPECT_THAT(choose(MenuCommand::GrantAccess), ElementsAre("prompt", "open the system's settings"));
}

TEST_F(LaunchOrderTest, ALayoutIsSavedThenAnnouncedThenShown) {
    launch();
    EXPECT_THAT(choose(MenuCommand::OpenSettings),
                ElementsAre("make settings window", "show settings window"));

    EXPECT_THAT(choose(MenuCommand::ApplyLayout, 1),
                ElementsAre("read settings", "save settings", "list programs", "claim hot keys", "show icon",
                            "refresh settings window"));
}

TEST_F(LaunchOrderTest, PausingChangesTheIconAndSavesNothing) {
    launch();

    EXPECT_THAT(choose(MenuCommand::TogglePause), ElementsAre("dim icon"));
    EXPECT_THAT(choose(MenuCommand::TogglePause), ElementsAre("show icon"));
}

} // namespace
} // namespace tessarel
