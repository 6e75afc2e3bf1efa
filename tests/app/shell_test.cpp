// SPDX-License-Identifier: MIT

#include "app/app_delegate.h"
#include "app/login_item.h"
#include "app/main_menu.h"
#include "app/status_item.h"
#include "app/welcome.h"
#include "platform/sim/sim_desktop.h"
#include "support/settings_window_record.h"
#include "support/sim_ports.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <optional>
#include <string>

namespace tessarel {
namespace {

using namespace std::chrono_literals;

/// Fixture: the first launch of the program on a desktop.
class FirstRunTest : public ::testing::Test {
protected:
    void launch() {
        ASSERT_EQ(delegate.applicationDidFinishLaunching(), AppDelegate::Launch::Running);
        desktop.advance(0s);
    }
    /// Closes the welcome with the button at position `button` or, without one, in another way.
    void closeWelcome(std::optional<std::size_t> button) { ASSERT_TRUE(desktop.alerts().close(button)); }

    sim::SimDesktop desktop;
    sim::SimSingleInstance copy = desktop.makeCopy();
    SettingsWindowRecord settingsWindow;
    AppDelegate delegate{simPorts(desktop, copy), settingsWindow.factory()};
};

TEST_F(FirstRunTest, TheUserIsWelcomedOnce) {
    launch();

    ASSERT_EQ(desktop.alerts().shown.size(), 1U);
    const Alert& alert = desktop.alerts().shown[0];
    EXPECT_EQ(alert.messageText, "Welcome to Tessarel");
    EXPECT_EQ(
        alert.informativeText,
        "macOS only lets an app move other apps' windows after you allow it under Privacy & Security > "
        "Accessibility. Click Continue, then switch Tessarel on in the list.\n\n"
        "Try it: press Ctrl+Opt+1 to 5 to snap the front window into a zone, or hold Shift while dragging "
        "a window to see the zones. Click the menu bar icon, then Settings, to design your own layout.");
    EXPECT_EQ(alert.buttons, (std::vector<std::string>{"Continue", "Open Settings"}));
    EXPECT_EQ(desktop.ownApplication().activations, 1);
    EXPECT_FALSE(Store(desktop.preferences()).settings.hasOnboarded) << "not before a button is pressed";

    closeWelcome(0);

    EXPECT_TRUE(Store(desktop.preferences()).settings.hasOnboarded);
}

TEST(WelcomeTest, ANoteOfTheSystemFollowsTheAdviceToDrag) {
    PlatformWords words;
    words.welcomeDragNote = "Press it late.";

    EXPECT_THAT(welcomeAlert(words, {}).informativeText,
                testing::HasSubstr("to see the zones. Press it late. Click the menu bar icon"));
}

TEST(WelcomeTest, TheLastSentenceNamesTheShortcutsThatAreTaken) {
    const std::string text = welcomeAlert({}, {}).informativeText;

    EXPECT_EQ(welcomeAlert({}, {.takenShortcuts = {"Ctrl+Alt+C"}}).informativeText,
              text + " Ctrl+Alt+C belongs to another program already; choose another shortcut in Settings.");
    EXPECT_EQ(welcomeAlert({}, {.takenShortcuts = {"A", "B"}}).informativeText,
              text + " A and B belong to another program already; choose other shortcuts in Settings.");
    EXPECT_EQ(welcomeAlert({}, {.takenShortcuts = {"A", "B", "C"}}).informativeText,
              text + " A, B and C belong to another program already; choose other shortcuts in Settings.");
}

TEST_F(FirstRunTest, WhereTheZonesAreOutlinesTheWelcomeSaysSo) {
    desktop.overlay().outlined = true;

    launch();

    EXPECT_THAT(
        desktop.alerts().shown.at(0).informativeText,
        testing::HasSubstr("to see the zones. The zones appear as outlines, because no compositor runs. "
                           "Click the menu bar icon"));
}

TEST_F(FirstRunTest, WithoutAStatusAreaTheWelcomeSaysHowElseToReachTheSettings) {
    desktop.statusItem().hasStatusArea = false;

    launch();

    ASSERT_EQ(desktop.alerts().shown.size(), 1U);
    const std::string& text = desktop.alerts().shown[0].informativeText;
    EXPECT_EQ(text.find("icon"), std::string::npos) << text;
    EXPECT_TRUE(text.ends_with("Start Tessarel again to open Settings and design your own layout.")) << text;
}

TEST_F(FirstRunTest, TheWelcomeIsFollowedByThePromptWhateverTheButton) {
    desktop.trust().trusted = false;
    launch();
    EXPECT_EQ(desktop.trust().prompts, 0);

    closeWelcome(0);

    EXPECT_EQ(desktop.trust().prompts, 1);
    EXPECT_EQ(settingsWindow.shown, 0);
}

TEST_F(FirstRunTest, MenuAndSettingsCanBeUsedWhileTheWelcomeStands) {
    launch();

    const Menu menu = desktop.statusItem().openMenu();
    const auto pause = std::ranges::find(menu, MenuCommand::TogglePause, &MenuItem::command);
    ASSERT_NE(pause, menu.end());
    desktop.statusItem().choose(*pause);
    EXPECT_TRUE(desktop.statusItem().appearsDisabled);
    delegate.applicationShouldHandleReopen();
    EXPECT_EQ(settingsWindow.shown, 1);
    EXPECT_EQ(desktop.alerts().standing().size(), 1U);
}

TEST_F(FirstRunTest, WhereTheSystemTellsTheWelcomeNamesTheShortcutsThatAreTaken) {
    const auto center = desktop.hotKeys().holdByAnotherProgram(8, kCtrlKey + kOptKey);
    const auto zone1 = desktop.hotKeys().holdByAnotherProgram(18, kCtrlKey + kOptKey);
    PlatformWords words;
    words.welcomeNamesTaken = true;
    words.modifierNames.opt = "Alt";
    AppDelegate other{simPorts(desktop, copy, words), nullptr};
    ASSERT_EQ(other.applicationDidFinishLaunching(), AppDelegate::Launch::Running);
    desktop.advance(0s);

    EXPECT_THAT(desktop.alerts().shown.at(0).informativeText,
                testing::EndsWith(" Ctrl+Alt+1 and Ctrl+Alt+C belong to another program already; choose "
                                  "other shortcuts in Settings."));
}

TEST_F(FirstRunTest, ElsewhereTheWelcomeNamesNone) {
    const auto zone1 = desktop.hotKeys().holdByAnotherProgram(18, kCtrlKey + kOptKey);

    launch();

    EXPECT_THAT(desktop.alerts().shown.at(0).informativeText,
                testing::EndsWith("to design your own layout."));
}

TEST_F(FirstRunTest, ThePromptIsRequestedEvenWhenTrusted) {
    launch();
    closeWelcome(0);

    EXPECT_EQ(desktop.trust().promptCalls, 1) << "the system decides whether to show it";
    EXPECT_EQ(desktop.trust().prompts, 0);
}

TEST_F(FirstRunTest, APermissionThatTurnsOutToBeMissingIsAskedForOnceAfterTheWelcome) {
    launch();
    desktop.trust().trusted = false;
    desktop.trust().lost.send();
    EXPECT_EQ(desktop.trust().promptCalls, 0);

    closeWelcome(0);

    EXPECT_EQ(desktop.trust().prompts, 1);
}

TEST_F(FirstRunTest, APermissionThatTurnsOutToBeMissingAfterTheWelcomeIsAskedForToo) {
    launch();
    closeWelcome(0);
    desktop.trust().trusted = false;

    desktop.trust().lost.send();

    EXPECT_EQ(desktop.trust().prompts, 1);
}

TEST_F(FirstRunTest, TheSecondButtonOpensTheSettings) {
    launch();

    closeWelcome(1);

    EXPECT_EQ(settingsWindow.shown, 1);
}

TEST_F(FirstRunTest, AWelcomeClosedWithoutAButtonComesAgainButIsFollowedByThePrompt) {
    desktop.trust().trusted = false;
    launch();

    closeWelcome(std::nullopt);

    EXPECT_FALSE(Store(desktop.preferences()).settings.hasOnboarded);
    EXPECT_EQ(desktop.preferencesStorage().writes, 0);
    EXPECT_EQ(desktop.trust().prompts, 1);
    EXPECT_EQ(settingsWindow.made, 0);
}

TEST_F(FirstRunTest, HotKeysAreRegisteredBeforeTheWelcomeIsShown) {
    ASSERT_EQ(delegate.applicationDidFinishLaunching(), AppDelegate::Launch::Running);

    EXPECT_FALSE(desktop.hotKeys().registered().empty());
    EXPECT_TRUE(desktop.alerts().shown.empty());
}

TEST_F(FirstRunTest, TheNextLaunchShowsNoWelcome) {
    desktop.preferences().setData(Store::key, R"({"hasOnboarded": true})");

    launch();

    EXPECT_TRUE(desktop.alerts().shown.empty());
    EXPECT_EQ(desktop.ownApplication().activations, 0);
}

TEST_F(FirstRunTest, TheWelcomePostsNoSettingsChange) {
    ASSERT_EQ(delegate.applicationDidFinishLaunching(), AppDelegate::Launch::Running);
    int announcements = 0;
    const auto observer = Store::shared().tessarelSettingsChanged.connect([&] { ++announcements; });

    desktop.advance(0s);
    closeWelcome(0);

    ASSERT_TRUE(Store::shared().settings.hasOnboarded);
    EXPECT_EQ(announcements, 0);
}

TEST(FirstRunEndTest, AProgramThatEndsWhileTheWelcomeStandsHasNotWelcomed) {
    sim::SimDesktop desktop;
    sim::SimSingleInstance copy = desktop.makeCopy();
    SettingsWindowRecord settingsWindow;
    {
        AppDelegate delegate{simPorts(desktop, copy), settingsWindow.factory()};
        ASSERT_EQ(delegate.applicationDidFinishLaunching(), AppDelegate::Launch::Running);
        desktop.advance(0s);
        ASSERT_EQ(desktop.alerts().standing().size(), 1U);
    }
    desktop.advance(0s);

    EXPECT_TRUE(desktop.alerts().standing().empty());
    EXPECT_TRUE(desktop.preferencesStorage().documents.empty());
    EXPECT_EQ(desktop.trust().promptCalls, 0);
    EXPECT_EQ(settingsWindow.made, 0);
}

TEST(FirstRunEndTest, AProgramThatEndsAtOnceShowsNoWelcome) {
    sim::SimDesktop desktop;
    sim::SimSingleInstance copy = desktop.makeCopy();
    {
        AppDelegate delegate{simPorts(desktop, copy), nullptr};
        ASSERT_EQ(delegate.applicationDidFinishLaunching(), AppDelegate::Launch::Running);
    }

    desktop.advance(1s);

    EXPECT_TRUE(desktop.alerts().shown.empty());
}

class StatusIconTest : public ::testing::Test {
protected:
    sim::SimDesktop desktop;
    Runtime runtime;
    StatusItem item{desktop.statusItem(), runtime, {[] { return Menu(); }, [](const MenuItem&) {}}};
};

TEST_F(StatusIconTest, TheFirstAvailableSymbolIsShown) {
    EXPECT_EQ(desktop.statusItem().symbol, "rectangle.3.group");
    EXPECT_EQ(desktop.statusItem().accessibilityDescription, "Tessarel");
    EXPECT_EQ(desktop.statusItem().title, "");

    desktop.statusItem().symbols.erase("rectangle.3.group");
    item.refreshStatusIcon();
    EXPECT_EQ(desktop.statusItem().symbol, "square.grid.2x2");

    desktop.statusItem().symbols.erase("square.grid.2x2");
    item.refreshStatusIcon();
    EXPECT_EQ(desktop.statusItem().symbol, "rectangle.split.3x1");
}

TEST_F(StatusIconTest, WithoutAnySymbolTheInitialsAreShown) {
    desktop.statusItem().symbols.clear();

    item.refreshStatusIcon();

    EXPECT_EQ(desktop.statusItem().symbol, "");
    EXPECT_EQ(desktop.statusItem().title, "TS");

    desktop.statusItem().symbols = {"rectangle.split.3x1"};
    item.refreshStatusIcon();

    EXPECT_EQ(desktop.statusItem().symbol, "rectangle.split.3x1");
    EXPECT_EQ(desktop.statusItem().title, "") << "the initials disappear when a symbol is available again";
}

TEST_F(StatusIconTest, TheIconIsDimmedWhilePaused) {
    EXPECT_FALSE(desktop.statusItem().appearsDisabled);

    runtime.paused = true;
    item.refreshStatusIcon();

    EXPECT_TRUE(desktop.statusItem().appearsDisabled);
    EXPECT_EQ(desktop.statusItem().symbol, "rectangle.3.group") << "the same symbol";

    runtime.paused = false;
    item.refreshStatusIcon();

    EXPECT_FALSE(desktop.statusItem().appearsDisabled);
}

TEST_F(StatusIconTest, WithoutAnySymbolTheInitialsAreDimmedWhilePausedToo) {
    desktop.statusItem().symbols.clear();
    runtime.paused = true;

    item.refreshStatusIcon();
    EXPECT_TRUE(desktop.statusItem().appearsDisabled);

    runtime.paused = false;
    item.refreshStatusIcon();
    EXPECT_FALSE(desktop.statusItem().appearsDisabled);
}

TEST(MainMenuTest, HasTheStandardEditingKeys) {
    const std::vector<MainMenu> menus = mainMenu();

    ASSERT_EQ(menus.size(), 2U);
    EXPECT_EQ(menus[0].title, "Tessarel");
    EXPECT_EQ(menus[0].items, (std::vector<MainMenuItem>{{"Close Window", "performClose:", 'w'},
                                                         {"Quit Tessarel", "terminate:", 'q'}}));
    EXPECT_EQ(menus[1].title, "Edit");
    EXPECT_EQ(menus[1].items, (std::vector<MainMenuItem>{{"Undo", "undo:", 'z'},
                                                         {"Redo", "redo:", 'z', true},
                                                         {},
                                                         {"Cut", "cut:", 'x'},
                                                         {"Copy", "copy:", 'c'},
                                                         {"Paste", "paste:", 'v'},
                                                         {"Select All", "selectAll:", 'a'}}));
}

class LoginItemTest : public ::testing::Test {
protected:
    using Status = LoginItemPort::Status;

    sim::SimDesktop desktop;
    LoginItem loginItem{desktop.loginItem()};
};

TEST_F(LoginItemTest, IsTurnedOnAndOff) {
    EXPECT_FALSE(loginItem.isEnabled());
    EXPECT_EQ(loginItem.set(true), std::nullopt);
    EXPECT_TRUE(loginItem.isEnabled());
    EXPECT_EQ(loginItem.set(false), std::nullopt);
    EXPECT_FALSE(loginItem.isEnabled());
}

TEST_F(LoginItemTest, AFailureReturnsItsTextAndLeavesTheItemDisabled) {
    desktop.loginItem().failure = "The folder cannot be written to.";

    EXPECT_EQ(loginItem.set(true), "The folder cannot be written to.");

    EXPECT_FALSE(loginItem.isEnabled());
}

TEST_F(LoginItemTest, IsNotEnabledWhileItWaitsForApproval) {
    desktop.loginItem().statusAfterRegistering = Status::RequiresApproval;

    EXPECT_EQ(loginItem.set(true), std::nullopt);

    EXPECT_FALSE(loginItem.isEnabled());
}

TEST_F(LoginItemTest, IsNotEnabledWhenTheSystemDoesNotFindIt) {
    desktop.loginItem().currentStatus = Status::NotFound;

    EXPECT_FALSE(loginItem.isEnabled());
}

} // namespace
} // namespace tessarel
