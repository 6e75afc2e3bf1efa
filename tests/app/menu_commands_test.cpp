// SPDX-License-Identifier: MIT

#include "app/running_program.h"
#include "model/presets.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <optional>

namespace tessarel {
namespace {

using namespace std::chrono_literals;

/// Chooses rows of the menu of the running program.
class MenuCommandsTest : public RunningProgramTest {
protected:
    void choose(MenuCommand command, int tag = 0) {
        MenuItem item;
        item.command = command;
        item.tag = tag;
        desktop.statusItem().choose(item);
    }

    void chooseAction(ActionID::Case action) { choose(MenuCommand::RunMenuAction, static_cast<int>(action)); }
};

TEST_F(MenuCommandsTest, AnActionRunsAfterTheMenuHasClosed) {
    chooseAction(ActionID::leftHalf);

    desktop.advance(149ms);
    EXPECT_EQ(desktop.frame(window), kSomewhere);
    desktop.advance(1ms);
    EXPECT_EQ(desktop.frame(window), kLeftHalf);
}

TEST_F(MenuCommandsTest, ActionsChosenInQuickSuccessionAllRun) {
    chooseAction(ActionID::leftHalf);
    desktop.advance(100ms);
    chooseAction(ActionID::restore);

    desktop.advance(50ms);
    EXPECT_EQ(desktop.frame(window), kLeftHalf);
    desktop.advance(100ms);
    EXPECT_EQ(desktop.frame(window), kSomewhere);
}

TEST_F(MenuCommandsTest, AnActionWithoutPermissionPromptsAfterTheMenuHasClosed) {
    desktop.advance(0s); // ends the launch, which prompts as well
    desktop.trust().trusted = false;

    chooseAction(ActionID::leftHalf);
    EXPECT_EQ(desktop.trust().prompts, 0);
    desktop.advance(150ms);

    EXPECT_EQ(desktop.trust().prompts, 1);
    EXPECT_EQ(desktop.frame(window), kSomewhere);
}

TEST_F(MenuCommandsTest, AnActionsTagIsItsPosition) {
    choose(MenuCommand::RunMenuAction, 9);
    desktop.advance(150ms);

    EXPECT_EQ(desktop.frame(window), kLeftHalf);
}

TEST_F(MenuCommandsTest, TagsWithoutAnActionAreIgnored) {
    choose(MenuCommand::RunMenuAction, -1);
    choose(MenuCommand::RunMenuAction, 19);
    desktop.advance(1s);

    EXPECT_EQ(desktop.frame(window), kSomewhere);
}

TEST_F(MenuCommandsTest, TheFirstAndTheLastActionRunToo) {
    choose(MenuCommand::RunMenuAction, 0);
    desktop.advance(150ms);
    EXPECT_EQ(desktop.frame(window), (Rect{40, 25, 433, 410}));

    choose(MenuCommand::ApplyLayout, 1);
    choose(MenuCommand::RunMenuAction, 18);
    desktop.advance(150ms);
    EXPECT_EQ(desktop.frame(window), kLeftHalf) << "arranged into the first zone";
}

TEST_F(MenuCommandsTest, APendingActionDoesNotRunAfterTheProgramHasEnded) {
    chooseAction(ActionID::leftHalf);

    delegate.reset();
    desktop.advance(1s);

    EXPECT_EQ(desktop.frame(window), kSomewhere);
}

TEST_F(MenuCommandsTest, ApplyingALayoutMakesItsZonesActive) {
    choose(MenuCommand::ApplyLayout, 1);

    EXPECT_EQ(settings().zones, Presets::all()[1].zones);
    EXPECT_EQ(Store(desktop.preferences()).settings.zones, Presets::all()[1].zones);
    EXPECT_EQ(desktop.preferencesStorage().writes, 2) << "the first one is the fixture's";
}

TEST_F(MenuCommandsTest, ApplyingALayoutShowsItInTheSettingsWindow) {
    choose(MenuCommand::OpenSettings);

    choose(MenuCommand::ApplyLayout, 1);

    EXPECT_EQ(settingsWindow.refreshed, 1);
    EXPECT_EQ(settingsWindow.shown, 1) << "it is not brought to the front again";
}

TEST_F(MenuCommandsTest, ApplyingTheActiveLayoutIsAnnouncedAndShownLikeAnyOther) {
    choose(MenuCommand::OpenSettings);
    choose(MenuCommand::ApplyLayout, 1);
    int announced = 0;
    const auto observer = Store::shared().tessarelSettingsChanged.connect([&] { ++announced; });

    choose(MenuCommand::ApplyLayout, 1);

    EXPECT_EQ(announced, 1);
    EXPECT_EQ(settingsWindow.refreshed, 2);
}

TEST_F(MenuCommandsTest, ApplyingALayoutCreatesNoSettingsWindow) {
    choose(MenuCommand::ApplyLayout, 1);

    EXPECT_EQ(settingsWindow.made, 0);
}

TEST_F(MenuCommandsTest, ApplyingALayoutMovesNoWindow) {
    choose(MenuCommand::ApplyLayout, 1);
    desktop.advance(1s);

    EXPECT_EQ(desktop.frame(window), kSomewhere);
}

TEST_F(MenuCommandsTest, ApplyingALayoutClaimsTheHotKeysOfItsZones) {
    const std::size_t before = desktop.hotKeys().registered().size();

    choose(MenuCommand::ApplyLayout, 1); // two zones instead of five

    EXPECT_EQ(desktop.hotKeys().registered().size(), before - 3);
}

TEST_F(MenuCommandsTest, ASavedLayoutIsPaddedWhenApplied) {
    Store::shared().settings.userLayouts = {{"Mine", {Presets::z(0, 0, 30, 100)}}};

    choose(MenuCommand::ApplyLayout, 1000);

    EXPECT_EQ(settings().zones, Presets::pad({Presets::z(0, 0, 30, 100)}));
}

TEST_F(MenuCommandsTest, TagsWithoutALayoutAreIgnored) {
    const auto before = settings().zones;
    choose(MenuCommand::OpenSettings);

    for (const int tag : {-1, 9, 999, 1000, 2147483647})
        choose(MenuCommand::ApplyLayout, tag);

    EXPECT_EQ(settings().zones, before);
    EXPECT_EQ(settingsWindow.refreshed, 0);
    EXPECT_EQ(desktop.preferencesStorage().writes, 1) << "only the fixture's";
}

TEST_F(MenuCommandsTest, ReopeningTheMenuShowsTheAppliedLayoutChecked) {
    choose(MenuCommand::ApplyLayout, 1);

    const Menu menu = desktop.statusItem().openMenu();

    EXPECT_FALSE(menu[6].submenu[0].isChecked); // the layouts, below two zones, arrange and move
    EXPECT_TRUE(menu[6].submenu[1].isChecked);
}

TEST_F(MenuCommandsTest, PausingDimsTheIconAndKeysDoNothing) {
    choose(MenuCommand::TogglePause);

    EXPECT_TRUE(desktop.statusItem().appearsDisabled);
    EXPECT_TRUE(desktop.hotKeys().press(123, 6144)); // the key is still grabbed
    EXPECT_EQ(desktop.frame(window), kSomewhere);
}

TEST_F(MenuCommandsTest, PausingAppliesToMenuActionsToo) {
    chooseAction(ActionID::leftHalf);
    choose(MenuCommand::TogglePause);
    desktop.advance(1s);

    EXPECT_EQ(desktop.frame(window), kSomewhere);
}

TEST_F(MenuCommandsTest, AnActionChosenDuringAPauseThatEndsBeforeItIsDueRuns) {
    choose(MenuCommand::TogglePause);
    chooseAction(ActionID::leftHalf);
    choose(MenuCommand::TogglePause);
    desktop.advance(150ms);

    EXPECT_EQ(desktop.frame(window), kLeftHalf);
}

TEST_F(MenuCommandsTest, PausingAgainResumes) {
    choose(MenuCommand::TogglePause);
    choose(MenuCommand::TogglePause);

    EXPECT_FALSE(desktop.statusItem().appearsDisabled);
    EXPECT_TRUE(desktop.hotKeys().press(123, 6144));
    EXPECT_EQ(desktop.frame(window), kLeftHalf);
}

TEST_F(MenuCommandsTest, TheSettingsCommandOpensTheSettingsWindow) {
    choose(MenuCommand::OpenSettings);

    EXPECT_EQ(settingsWindow.shown, 1);
}

TEST_F(MenuCommandsTest, TheSettingsWindowIsCreatedWhenFirstOpened) {
    EXPECT_EQ(settingsWindow.made, 0);

    choose(MenuCommand::OpenSettings);
    choose(MenuCommand::OpenSettings);

    EXPECT_EQ(settingsWindow.made, 1);
    EXPECT_EQ(settingsWindow.shown, 2);
}

TEST_F(MenuCommandsTest, TheSettingsWindowIsDestroyedWithTheProgram) {
    choose(MenuCommand::OpenSettings);

    delegate.reset();

    EXPECT_EQ(settingsWindow.ended, 1);
}

TEST_F(MenuCommandsTest, GrantingAccessPromptsAndOpensTheSystemsSettings) {
    desktop.trust().trusted = false;

    choose(MenuCommand::GrantAccess);

    EXPECT_EQ(desktop.trust().prompts, 1);
    EXPECT_EQ(desktop.trust().settingsOpened, 1);
}

TEST_F(MenuCommandsTest, CheckingForUpdatesAlwaysShowsTheResult) {
    const std::size_t before = desktop.urlLoading().requests.size();

    choose(MenuCommand::CheckUpdates);
    ASSERT_EQ(desktop.urlLoading().requests.size(), before + 1);
    desktop.urlLoading().answer(before, {});

    EXPECT_EQ(desktop.alerts().shown.size(), 1U);
}

TEST_F(MenuCommandsTest, TheMenuIsBuiltEachTimeItOpens) {
    const auto isPauseChecked = [this] {
        const Menu opened = desktop.statusItem().openMenu();
        return std::ranges::find(opened, MenuCommand::TogglePause, &MenuItem::command)->isChecked;
    };
    EXPECT_FALSE(isPauseChecked());

    choose(MenuCommand::TogglePause);

    EXPECT_TRUE(isPauseChecked());
}

TEST_F(MenuCommandsTest, OpeningTheMenuTakesOverShortcutsThatHaveBecomeFree) {
    delegate.reset();
    auto other = desktop.hotKeys().holdByAnotherProgram(18, 6144);
    delegate.emplace(simPorts(desktop, copy), settingsWindow.factory());
    ASSERT_EQ(delegate->applicationDidFinishLaunching(), AppDelegate::Launch::Running);
    EXPECT_EQ(desktop.statusItem().openMenu().at(2).title, "Snap to Zone 1");

    other.reset();

    EXPECT_EQ(desktop.statusItem().openMenu().at(2).title, "Snap to Zone 1   (Ctrl+Opt+1)");
    EXPECT_TRUE(desktop.hotKeys().press(18, 6144));
}

TEST_F(MenuCommandsTest, QuitTerminates) {
    choose(MenuCommand::Quit);

    EXPECT_EQ(desktop.ownApplication().terminations, 1);
}

TEST_F(MenuCommandsTest, TitlesAndSubmenuRowsDoNothing) {
    desktop.takeRequests().clear();

    choose(MenuCommand::None);
    desktop.advance(1s);

    EXPECT_TRUE(desktop.takeRequests().empty());
    EXPECT_EQ(desktop.ownApplication().terminations, 0);
    EXPECT_EQ(settingsWindow.shown, 0);
}

TEST_F(MenuCommandsTest, StartingTheProgramAgainShowsTheSettings) {
    sim::SimSingleInstance second = desktop.makeCopy();

    EXPECT_EQ(second.claim([] {}, [] {}), nullptr);
    desktop.advance(0s);

    EXPECT_EQ(settingsWindow.shown, 1);
}

} // namespace
} // namespace tessarel
