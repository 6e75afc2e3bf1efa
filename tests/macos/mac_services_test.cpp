// SPDX-License-Identifier: MIT

#include "macos/mac_test.h"

#include <thread>

namespace tessarel::macos {
namespace {

class MacWindowListTest : public MacTest {};

TEST_F(MacWindowListTest, WindowsAreListedFrontToBack) {
    const auto back = fakemac::openWindow({.pid = kEditor, .axFrame = {0, 25, 300, 200}, .layer = 3});
    fakemac::openWindow({.pid = kEditor, .axFrame = {200, 150, 640, 480}, .alpha = 0.5});

    EXPECT_EQ(desktop->windowList.onScreenWindows(),
              (std::vector<ListedWindow>{{0, kEditor, Rect{200, 150, 640, 480}, 0.5},
                                         {3, kEditor, Rect{0, 25, 300, 200}, 1}}));
    fakemac::focus(back);
    EXPECT_EQ(desktop->windowList.onScreenWindows().front().layer, 3);
}

TEST_F(MacWindowListTest, MinimizedWindowsAndTheDesktopAreNotListed) {
    fakemac::openWindow({.pid = kEditor, .axFrame = {0, 25, 300, 200}, .minimized = true});

    EXPECT_TRUE(desktop->windowList.onScreenWindows().empty());
}

TEST_F(MacWindowListTest, MissingAndMistypedPropertiesAreEmpty) {
    const fakemac::Window window{.pid = kEditor, .axFrame = {0, 25, 300, 200}};
    for (const char* key : {"kCGWindowLayer", "kCGWindowOwnerPID", "kCGWindowBounds", "kCGWindowAlpha"}) {
        fakemac::Window without = window;
        without.unlisted = {key};
        fakemac::openWindow(without);
        fakemac::Window odd = window;
        odd.mislisted = {key};
        fakemac::openWindow(odd);
    }

    const auto listed = desktop->windowList.onScreenWindows();

    ASSERT_EQ(listed.size(), 8U);
    for (const std::size_t i : {0U, 1U}) {
        EXPECT_FALSE(listed[i].alpha);
        EXPECT_FALSE(listed[2 + i].axBounds);
        EXPECT_FALSE(listed[4 + i].ownerPid);
        EXPECT_FALSE(listed[6 + i].layer);
        EXPECT_TRUE(listed[i].layer && listed[i].ownerPid && listed[i].axBounds);
    }
}

TEST_F(MacWindowListTest, AnEntryThatIsNoDictionaryHasNoProperties) {
    fakemac::mac().listsAText = true;

    EXPECT_EQ(desktop->windowList.onScreenWindows(), std::vector<ListedWindow>{{}});
}

TEST_F(MacWindowListTest, TheListIsEmptyWhenTheWindowServerReturnsNull) {
    fakemac::openWindow({.pid = kEditor, .axFrame = {0, 25, 300, 200}});
    fakemac::mac().windowServerAnswers = false;

    EXPECT_TRUE(desktop->windowList.onScreenWindows().empty());
}

class MacLoginItemTest : public MacTest {
protected:
    using Status = LoginItemPort::Status;
};

TEST_F(MacLoginItemTest, TheLoginItemCanBeRegisteredAndRemoved) {
    EXPECT_EQ(desktop->loginItem.status(), Status::NotRegistered);

    EXPECT_EQ(desktop->loginItem.registerItem(), std::nullopt);
    EXPECT_EQ(desktop->loginItem.status(), Status::Enabled);

    EXPECT_EQ(desktop->loginItem.unregisterItem(), std::nullopt);
    EXPECT_EQ(desktop->loginItem.status(), Status::NotRegistered);
}

TEST_F(MacLoginItemTest, EveryStatusIsDistinguished) {
    for (const auto status :
         {Status::NotRegistered, Status::Enabled, Status::RequiresApproval, Status::NotFound}) {
        fakemac::mac().loginItemStatus = static_cast<long>(status);
        EXPECT_EQ(desktop->loginItem.status(), status);
    }
}

TEST_F(MacLoginItemTest, ARefusalReturnsTheSystemsErrorText) {
    fakemac::mac().loginItemRefusal = "Operation not permitted";
    EXPECT_EQ(desktop->loginItem.registerItem(), "Operation not permitted");

    fakemac::mac().loginItemStatus = static_cast<long>(Status::Enabled);
    EXPECT_EQ(desktop->loginItem.unregisterItem(), "Operation not permitted");
}

TEST_F(MacLoginItemTest, AnItemThatIsNotRegisteredIsRemovedWithoutACall) {
    fakemac::mac().loginItemRefusal = "Operation not permitted";
    for (const auto status : {Status::NotRegistered, Status::NotFound}) {
        fakemac::mac().loginItemStatus = static_cast<long>(status);
        EXPECT_EQ(desktop->loginItem.unregisterItem(), std::nullopt);
    }

    EXPECT_EQ(fakemac::mac().loginItemChanges, 0);
}

class MacServicesTest : public MacTest {};

TEST_F(MacServicesTest, ThePermissionIsRequestedWithThePromptOption) {
    fakemac::mac().trusted = false;
    EXPECT_FALSE(desktop->trust.isTrusted());

    desktop->trust.prompt();

    EXPECT_EQ(fakemac::mac().prompted, Lines{"AXTrustedCheckOptionPrompt on"});
}

TEST_F(MacServicesTest, ThePermissionSettingsAreOpened) {
    desktop->trust.openSettings();

    EXPECT_EQ(fakemac::mac().opened,
              Lines{"x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility"});
}

TEST_F(MacServicesTest, OnlyUrlsAreOpened) {
    for (const char* text : {"https://example.org/a?b=c#d", "", "no scheme", "\xff"})
        desktop->openUrl.open(text);

    EXPECT_EQ(fakemac::mac().opened, Lines{"https://example.org/a?b=c#d"});
}

TEST_F(MacServicesTest, TheAlertSoundIsPlayed) {
    desktop->alertSound.beep();

    EXPECT_EQ(fakemac::mac().beeps, 1);
}

TEST_F(MacServicesTest, WithoutDisplaysThereIsNoMainScreen) {
    fakemac::mac().displays.clear();

    EXPECT_TRUE(desktop->displays.screens().empty());
    EXPECT_FALSE(desktop->displays.mainScreen());
}

TEST_F(MacServicesTest, ADisplayDisconnectedDuringTheCallIsLeftOut) {
    const auto first = fakemac::mac().displays.at(0);
    fakemac::mac().displays.push_back(
        {.number = 2, .frame = {1440, 0, 800, 600}, .visibleFrame = {1440, 0, 800, 600}});
    fakemac::mac().nextDisplays = {{first}};
    const auto screens = desktop->displays.screens();
    ASSERT_EQ(screens.size(), 1U);
    EXPECT_EQ(screens.front().id, first.number);

    fakemac::mac().nextDisplays.emplace();
    EXPECT_FALSE(desktop->displays.mainScreen());
}

TEST_F(MacServicesTest, AFrameworkCallOffTheMainThreadAborts) {
    const auto item = desktop->statusItem.create({});
    EXPECT_DEATH(std::thread([this] { (void)desktop->trust.isTrusted(); }).join(), "off the main thread");
    EXPECT_DEATH(std::thread([this] { desktop->statusItem.setTitle("TS"); }).join(), "off the main thread")
        << "a property";
}

TEST_F(MacServicesTest, TheTextsAreThoseOfMacOS) {
    EXPECT_EQ(desktop->words.thisComputer, "this Mac");
    EXPECT_EQ(desktop->words.modifierNames.cmd, "Cmd");
}

} // namespace
} // namespace tessarel::macos
