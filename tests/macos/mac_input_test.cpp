// SPDX-License-Identifier: MIT

#include "macos/fake/fake_menus.h"
#include "macos/mac_test.h"

#include <memory>
#include <stdexcept>

namespace tessarel::macos {
namespace {

constexpr std::uint32_t kCtrlOpt = 4096 + 2048;
constexpr std::uint32_t kKey1 = 18;

class MacHotKeysTest : public MacTest {
protected:
    [[nodiscard]] SubscriptionPtr claim(std::uint32_t id) {
        const HotKeyRequest request{kKey1, kCtrlOpt, {0x47575744, id}};
        return std::move(desktop->hotKeys.registerHotKeys({&request, 1}).at(0));
    }

    int pressed = 0;
    SubscriptionPtr handler = desktop->hotKeys.installHandler([this](std::uint32_t) { ++pressed; });
};

TEST_F(MacHotKeysTest, AHotKeyIsRegisteredWithSignatureAndId) {
    const auto hotKey = claim(7);

    EXPECT_EQ(fakemac::claims(), Lines{"18 6144 1196906308 7"});
}

TEST_F(MacHotKeysTest, ACombinationOfAnotherApplicationCanBeRegistered) {
    fakemac::claimForAnotherProgram(kKey1, kCtrlOpt);
    const auto hotKey = claim(7);
    ASSERT_TRUE(hotKey);

    fakemac::pressKeys(kKey1, kCtrlOpt);

    EXPECT_EQ(pressed, 1);
    EXPECT_EQ(fakemac::mac().pressesForOthers, 1);
}

TEST_F(MacHotKeysTest, EveryHandlerIsCalledForAPress) {
    int second = 0;
    const auto other = desktop->hotKeys.installHandler([&](std::uint32_t) { ++second; });
    const auto hotKey = claim(7);

    fakemac::pressKeys(kKey1, kCtrlOpt);

    EXPECT_EQ(pressed, 1);
    EXPECT_EQ(second, 1);
}

TEST_F(MacHotKeysTest, AnOwnHotKeyIsNotPassedOnToALibrary) {
    fakemac::installLibraryHandler();
    const auto hotKey = claim(7);

    fakemac::pressKeys(kKey1, kCtrlOpt);

    EXPECT_EQ(pressed, 1);
    EXPECT_TRUE(fakemac::mac().libraryHotKeys.empty());
}

TEST_F(MacHotKeysTest, ARecordedPressReachesNoHandler) {
    fakemac::installLibraryHandler();
    fakemac::launch(fakemac::mac().ownPid, {});
    fakemac::focus(fakemac::openWindow({.pid = fakemac::mac().ownPid, .axFrame = {0, 0, 400, 300}}));
    const auto hotKey = claim(7);
    const auto recorder = desktop->localKeys.monitorKeyDown([](const KeyDown&) { return true; });

    fakemac::pressKeys(kKey1, kCtrlOpt);

    EXPECT_EQ(pressed, 0);
    EXPECT_TRUE(fakemac::mac().libraryHotKeys.empty());
}

TEST_F(MacHotKeysTest, AHotKeyOfALibraryIsPassedOnToTheLibrary) {
    fakemac::installLibraryHandler();
    const auto hotKey = claim(7);

    fakemac::pressLibraryHotKey(0x4c494252, 7);

    EXPECT_EQ(pressed, 0);
    EXPECT_EQ(fakemac::mac().libraryHotKeys, std::vector<std::uint32_t>{7});
}

TEST_F(MacHotKeysTest, AHotKeyWorksWhileAMenuIsOpen) {
    const auto item = desktop->statusItem.create({[] { return Menu(); }, [](const MenuItem&) {}});
    const auto hotKey = claim(7);
    (void)fakemac::openStatusMenu();

    fakemac::pressKeys(kKey1, kCtrlOpt);

    EXPECT_EQ(pressed, 1);
}

TEST_F(MacHotKeysTest, AHandlerMayDestroyItsSubscription) {
    handler = desktop->hotKeys.installHandler([this](std::uint32_t) {
        handler.reset();
        ++pressed;
    });
    const auto hotKey = claim(7);

    fakemac::pressKeys(kKey1, kCtrlOpt);
    fakemac::pressKeys(kKey1, kCtrlOpt);

    EXPECT_EQ(pressed, 1);
}

TEST_F(MacHotKeysTest, ClaimsAndHandlersMayOutliveTheBackEnd) {
    const auto hotKey = claim(7);
    desktop.reset();

    fakemac::pressKeys(kKey1, kCtrlOpt);

    EXPECT_EQ(pressed, 0);
}

TEST_F(MacHotKeysTest, TheLargestKeyCodeIs127) {
    const std::vector<HotKeyRequest> requests{{127, kCtrlOpt, {0x47575744, 1}},
                                              {128, kCtrlOpt, {0x47575744, 2}}};

    const auto claimed = desktop->hotKeys.registerHotKeys(requests);

    EXPECT_TRUE(claimed.at(0));
    EXPECT_FALSE(claimed.at(1));
}

TEST_F(MacHotKeysTest, ARecorderReceivesTheCombinationThatIsRegisteredNow) {
    fakemac::launch(fakemac::mac().ownPid, {});
    fakemac::focus(fakemac::openWindow({.pid = fakemac::mac().ownPid, .axFrame = {0, 0, 400, 300}}));
    std::vector<KeyDown> keys;
    const auto recorder = desktop->localKeys.monitorKeyDown([&](const KeyDown& key) {
        keys.push_back(key);
        return true;
    });
    auto hotKey = claim(7);
    hotKey.reset();
    const HotKeyRequest changed{kKey1 + 1, kCtrlOpt, {0x47575744, 7}};
    hotKey = std::move(desktop->hotKeys.registerHotKeys({&changed, 1}).at(0));

    fakemac::pressKeys(kKey1 + 1, kCtrlOpt);

    EXPECT_EQ(keys, (std::vector<KeyDown>{{kKey1 + 1, kControlFlag | kOptionFlag}}));
}

TEST_F(MacHotKeysTest, NoExceptionLeavesTheHandler) {
    fakemac::installLibraryHandler();
    handler = desktop->hotKeys.installHandler([](std::uint32_t) { throw std::runtime_error("of a test"); });
    const auto hotKey = claim(7);

    EXPECT_NO_THROW(fakemac::pressKeys(kKey1, kCtrlOpt));
    EXPECT_EQ(fakemac::mac().libraryHotKeys, std::vector<std::uint32_t>{})
        << "the press was passed on to the library";
}

class MacLocalKeysTest : public MacTest {
protected:
    MacLocalKeysTest() {
        fakemac::launch(fakemac::mac().ownPid, {});
        fakemac::focus(fakemac::openWindow({.pid = fakemac::mac().ownPid, .axFrame = {0, 0, 400, 300}}));
    }

    std::vector<KeyDown> keys;
    SubscriptionPtr monitor = desktop->localKeys.monitorKeyDown([this](const KeyDown& key) {
        keys.push_back(key);
        return true;
    });
};

TEST_F(MacLocalKeysTest, AHeldKeyIsReportedOnce) {
    fakemac::pressKeys(kKey1, kCtrlOpt);
    fakemac::pressKeys(kKey1, kCtrlOpt, true);

    EXPECT_EQ(keys.size(), 1U);
}

TEST_F(MacLocalKeysTest, AConsumedKeyHasNoEffectUntilItsReleaseWhenItsHandlerIsGone) {
    monitor = desktop->localKeys.monitorKeyDown([this](const KeyDown&) {
        monitor.reset();
        return true;
    });

    fakemac::pressKeys(kKey1, kCtrlOpt);
    fakemac::pressKeys(kKey1, kCtrlOpt, true);
    fakemac::pressKeys(kKey1, kCtrlOpt, true);

    EXPECT_EQ(fakemac::mac().keysOfOwnWindows, 0);
}

TEST_F(MacLocalKeysTest, TheNextKeyAfterTheConsumedOneReachesTheWindow) {
    fakemac::pressKeys(kKey1, kCtrlOpt);
    monitor.reset();

    fakemac::pressKeys(kKey1, kCtrlOpt);
    EXPECT_EQ(fakemac::mac().keysOfOwnWindows, 1);
    EXPECT_EQ(fakemac::heldObjects(), Lines()) << "the events are still monitored";
    fakemac::pressKeys(kKey1, kCtrlOpt, true);

    EXPECT_EQ(fakemac::mac().keysOfOwnWindows, 2);
}

TEST_F(MacLocalKeysTest, ARecordedHotKeyHasNoEffectUntilItsRelease) {
    const HotKeyRequest request{kKey1, kCtrlOpt, {0x47575744, 7}};
    auto hotKey = std::move(desktop->hotKeys.registerHotKeys({&request, 1}).at(0));
    const auto handler = desktop->hotKeys.installHandler([](std::uint32_t) {});
    monitor = desktop->localKeys.monitorKeyDown([&](const KeyDown&) {
        monitor.reset();
        hotKey.reset();
        return true;
    });

    fakemac::pressKeys(kKey1, kCtrlOpt);
    ASSERT_FALSE(hotKey);
    fakemac::pressKeys(kKey1, kCtrlOpt, true);

    EXPECT_EQ(fakemac::mac().keysOfOwnWindows, 0);
}

TEST_F(MacLocalKeysTest, AKeyThatWasNotConsumedIsNotHeldBack) {
    monitor = desktop->localKeys.monitorKeyDown([this](const KeyDown&) {
        monitor.reset();
        return false;
    });

    fakemac::pressKeys(kKey1, kCtrlOpt);
    fakemac::pressKeys(kKey1, kCtrlOpt, true);

    EXPECT_EQ(fakemac::mac().keysOfOwnWindows, 2);
}

TEST_F(MacLocalKeysTest, OnlyTheFourModifiersAreReported) {
    fakemac::pressKeys(kKey1, 256); // the fake's Caps Lock is on

    EXPECT_EQ(keys, (std::vector<KeyDown>{{kKey1, kCommandFlag}}));
}

TEST_F(MacLocalKeysTest, OnlyAKeyThatNoMonitorConsumesReachesTheWindow) {
    fakemac::pressKeys(kKey1, kCtrlOpt);
    EXPECT_EQ(fakemac::mac().keysOfOwnWindows, 0);

    monitor = desktop->localKeys.monitorKeyDown([](const KeyDown&) { return false; });
    fakemac::pressKeys(kKey1, kCtrlOpt);
    EXPECT_EQ(fakemac::mac().keysOfOwnWindows, 1);
}

TEST_F(MacLocalKeysTest, AMonitorDestroyedDuringTheDeliveryDoesNotConsumeTheKey) {
    SubscriptionPtr later;
    monitor = desktop->localKeys.monitorKeyDown([&](const KeyDown&) {
        later.reset();
        return false;
    });
    later = desktop->localKeys.monitorKeyDown([](const KeyDown&) { return true; });

    fakemac::pressKeys(kKey1, kCtrlOpt);

    EXPECT_EQ(fakemac::mac().keysOfOwnWindows, 1);
}

TEST_F(MacLocalKeysTest, AKeyWhoseHandlerThrowsIsConsumed) {
    monitor = desktop->localKeys.monitorKeyDown(
        [](const KeyDown&) -> bool { throw std::runtime_error("of a test"); });

    fakemac::pressKeys(kKey1, kCtrlOpt);

    EXPECT_EQ(fakemac::mac().keysOfOwnWindows, 0);
}

class MacMouseTest : public MacTest {};

TEST_F(MacMouseTest, ARefusedMonitorIsNull) {
    fakemac::mac().allowsMonitors = false;

    EXPECT_FALSE(desktop->mouse.addGlobalMonitor(MouseEventKind::LeftDown, [](const MouseEvent&) {}));
}

TEST_F(MacMouseTest, EachMonitorIsRemovedWithItsSubscription) {
    auto first = desktop->mouse.addGlobalMonitor(MouseEventKind::LeftDown, [](const MouseEvent&) {});
    const auto second = desktop->mouse.addGlobalMonitor(MouseEventKind::LeftUp, [](const MouseEvent&) {});
    EXPECT_EQ(fakemac::globalMonitors(), 2U);

    first.reset();

    EXPECT_EQ(fakemac::globalMonitors(), 1U);
}

TEST_F(MacMouseTest, TheRightButtonIsNotReported) {
    int events = 0;
    std::vector<SubscriptionPtr> monitors;
    for (const auto kind : {MouseEventKind::LeftDown, MouseEventKind::LeftDragged, MouseEventKind::LeftUp})
        monitors.push_back(desktop->mouse.addGlobalMonitor(kind, [&](const MouseEvent&) { ++events; }));

    fakemac::pressRightButton();
    fakemac::movePointer({10, 10});
    fakemac::holdModifiers(kShiftFlag);
    fakemac::releaseRightButton();

    EXPECT_EQ(events, 0);
}

TEST_F(MacMouseTest, ModifiersAreReportedWhenThePermissionIsGrantedLater) {
    fakemac::mac().trusted = false;
    int movements = 0;
    const auto monitor =
        desktop->mouse.addGlobalMonitor(MouseEventKind::LeftDragged, [&](const MouseEvent&) { ++movements; });
    fakemac::mac().trusted = true;

    fakemac::pressLeftButton();
    fakemac::holdModifiers(kShiftFlag);
    fakemac::releaseLeftButton();

    EXPECT_EQ(movements, 1);
}

TEST_F(MacMouseTest, ModifiersAreReportedWhileAnOwnWindowIsTheKeyWindow) {
    fakemac::launch(fakemac::mac().ownPid, {});
    fakemac::focus(fakemac::openWindow({.pid = fakemac::mac().ownPid, .axFrame = {500, 500, 400, 300}}));
    int movements = 0;
    const auto monitor =
        desktop->mouse.addGlobalMonitor(MouseEventKind::LeftDragged, [&](const MouseEvent&) { ++movements; });

    fakemac::pressLeftButton();
    fakemac::holdModifiers(kCommandFlag);
    fakemac::releaseLeftButton();

    EXPECT_EQ(movements, 1);
    EXPECT_EQ(fakemac::mac().keysOfOwnWindows, 1) << "the key window receives the change as well";
}

TEST_F(MacMouseTest, ModifiersAreMonitoredOnlyWhileTheButtonIsHeld) {
    const auto monitor =
        desktop->mouse.addGlobalMonitor(MouseEventKind::LeftDragged, [](const MouseEvent&) {});
    EXPECT_EQ(fakemac::heldObjects(), Lines{"1 event monitors"});

    fakemac::pressLeftButton();
    EXPECT_EQ(fakemac::heldObjects(), Lines{"3 event monitors"});
    fakemac::releaseLeftButton();

    EXPECT_EQ(fakemac::heldObjects(), Lines{"1 event monitors"});
}

TEST_F(MacMouseTest, NoExceptionLeavesAMonitor) {
    const auto monitor = desktop->mouse.addGlobalMonitor(
        MouseEventKind::LeftDown, [](const MouseEvent&) { throw std::runtime_error("of a test"); });

    EXPECT_NO_THROW(fakemac::pressLeftButton());
    fakemac::releaseLeftButton();
}

} // namespace
} // namespace tessarel::macos
