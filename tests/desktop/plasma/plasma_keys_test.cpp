// SPDX-License-Identifier: MIT

#include "platform/plasma/keys/global_shortcuts.h"
#include "platform/plasma/keys/key_names.h"
#include "platform/plasma/keys/keyboard_layout.h"
#include "support/keymap_of.h"
#include "support/plasma/plasma_session.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace tessarel::plasmatest {
namespace {

constexpr Rect kRightOfFirst{800, 0, 800, 900};

constexpr const char* kUsualSettings = R"({"hasOnboarded":true,"rememberApps":false})";

constexpr std::uint32_t kControlOption = 6144;
constexpr std::uint32_t kRight = 124;
constexpr std::uint32_t kLeft = 123;
constexpr std::int64_t kControlAltRight = 0x0c000000 | 0x01000014; ///< as Qt numbers keys
constexpr std::int64_t kMetaK = 0x10000000 | 'K';

constexpr const char* kTwoShortcuts = R"({"hasOnboarded":true,"rememberApps":false,"bindings":{
    "rightHalf":{"keyCode":124,"mods":6144},"arrangeAll":{"keyCode":0,"mods":6144}}})";

class PlasmaKeysTest : public testing::Test {
protected:
    void SetUp() override {
        session.writeSettings(kUsualSettings);
        ASSERT_TRUE(session.startProgram()) << session.program().errors();
    }

    PlasmaSession session;
};

/// The hot keys of the back end alone.
class PlasmaShortcutsTest : public testing::Test {
protected:
    [[nodiscard]] std::vector<SubscriptionPtr> claim(std::uint32_t keyCode, std::uint32_t id) {
        return shortcuts.registerHotKeys(std::vector<HotKeyRequest>{{keyCode, kControlOption, {0, id}}});
    }

    void send(std::string member, std::string signature, std::vector<wayland::BusValue> values) {
        link.call({"org.kde.kglobalaccel", "/kglobalaccel", "org.kde.KGlobalAccel", std::move(member),
                   std::move(signature), std::move(values)});
    }
    /// Gives the keys to a shortcut of a program.
    void setKeys(const std::string& program, const std::string& shortcut, std::vector<std::int64_t> keys) {
        const std::vector<std::string> identity{program, shortcut, program, shortcut};
        constexpr std::int64_t kSetWithoutAutoloading = 6;
        send("doRegister", "as", {identity});
        send("setShortcut", "asaiu", {identity, std::move(keys), kSetWithoutAutoloading});
    }
    /// Changes the keys of a shortcut of another program, as the system settings do.
    void changeKeys(const std::string& program, const std::string& shortcut, std::vector<std::int64_t> keys) {
        const std::vector<std::string> identity{program, shortcut, program, shortcut};
        send("setForeignShortcut", "asai", {identity, std::move(keys)});
    }

    /// Waits until Plasma has handled everything that was sent.
    [[nodiscard]] bool waitForPlasma() {
        bool hasReply = false;
        link.call(
            {"org.kde.kglobalaccel", "/kglobalaccel", "org.freedesktop.DBus.Introspectable", "Introspect"},
            [&](const wayland::BusMessage&) { hasReply = true; }, wayland::BusLink::Delivery::Urgent);
        return link.waitUntil([&] { return hasReply; }, x11test::kPatience);
    }
    [[nodiscard]] bool dispatchUntil(const std::function<bool()>& holds) {
        return PlasmaSession::waitFor([&] {
            link.dispatch();
            return holds();
        });
    }

    PlasmaSession session;
    wayland::BusLink link{session.environment().at("DBUS_SESSION_BUS_ADDRESS")};
    plasma::KeyboardLayout layout{link, xkb::Keymap::us()};
    plasma::GlobalShortcuts shortcuts{link, layout};
};

TEST_F(PlasmaKeysTest, AHotKeyMovesTheActiveWindowExactlyIntoItsZone) {
    session.open({"kwrite"}, kRealEditor);

    session.input().press({key::kLeftControl, key::kLeftAlt, key::kDigit1 + 3});
    const Rect fourth{0, 450, 800, 450};
    EXPECT_EQ(session.settledFrame(kRealEditor, fourth), fourth);

    session.input().press({key::kLeftControl, key::kLeftAlt, key::kRight});
    EXPECT_EQ(session.settledFrame(kRealEditor, kRightOfFirst), kRightOfFirst);

    session.input().press({key::kLeftControl, key::kLeftAlt, key::kLeftMeta, key::kRight});
    const Rect onSecond{2400, 0, 800, 900};
    EXPECT_EQ(session.settledFrame(kRealEditor, onSecond), onSecond);

    EXPECT_EQ(session.endProgram(), 0) << session.program().errors();
    EXPECT_TRUE(session.shortcuts().empty());
}

TEST_F(PlasmaKeysTest, AHotKeyStaysOnItsKeyWhenTheKeyboardLayoutChanges) {
    session.openEditor();
    constexpr std::int64_t kControlAlt = 0x0c000000;
    const auto hasKey = [this](std::int64_t key) {
        return PlasmaSession::waitFor(
            [&] { return session.keysOf("zone4") == std::vector<std::int64_t>{kControlAlt | key}; });
    };
    ASSERT_TRUE(hasKey('4'));

    session.setLayouts("us,fr", 1);
    ASSERT_TRUE(hasKey('\''));
    session.input().press({key::kLeftControl, key::kLeftAlt, key::kDigit1 + 3});
    const Rect fourth{0, 450, 800, 450};
    EXPECT_EQ(session.settledFrame(kEditor, fourth), fourth);

    session.setLayouts("us,fr", 0);
    EXPECT_TRUE(hasKey('4'));
}

TEST_F(PlasmaKeysTest, AfterACrashTheNextStartHasItsKeysAndNoneOfThoseThatItDoesNotUse) {
    session.openEditor();
    session.program().signal(SIGKILL);
    ASSERT_TRUE(session.program().waitForExit());
    const auto isRegistered = [this](const char* name) {
        const auto names = session.shortcuts();
        return std::find(names.begin(), names.end(), name) != names.end();
    };
    ASSERT_TRUE(isRegistered("center"));

    session.writeSettings(kTwoShortcuts);
    ASSERT_TRUE(session.startProgram());
    EXPECT_TRUE(PlasmaSession::waitFor([&] { return !isRegistered("center"); }));
    session.input().press({key::kLeftControl, key::kLeftAlt, key::kRight});

    EXPECT_EQ(session.settledFrame(kEditor, kRightOfFirst), kRightOfFirst);
    EXPECT_EQ(session.endProgram(), 0);
    EXPECT_TRUE(session.shortcuts().empty());
}

TEST(PlasmaKeyNamesTest, KeysAreNamedAfterTheLayoutInUse) {
    PlasmaSession session;
    wayland::BusLink link(session.environment().at("DBUS_SESSION_BUS_ADDRESS"));
    plasma::KeyboardLayout layout(link, xkb::Keymap::us());
    plasma::LayoutKeyNames names(layout);
    int changes = 0;
    const auto counted = names.onChange([&] { ++changes; });
    layout.setKeymap(xkb::keymapOf("us,fr"));
    constexpr std::int64_t kA = 0;
    const auto becomes = [&](const char* name) {
        return PlasmaSession::waitFor([&] {
            link.dispatch();
            return names.name(kA) == name;
        });
    };

    session.setLayouts("us,fr", 1);
    EXPECT_TRUE(becomes("Q"));
    const int changesSoFar = changes;
    EXPECT_GT(changesSoFar, 0);

    session.setLayouts("us,fr", 0);
    layout.setKeymap(xkb::keymapOf("us,fr")); // as KWin then sends it; the layouts report nothing
    EXPECT_TRUE(becomes("A"));
    EXPECT_GT(changes, changesSoFar);
}

TEST_F(PlasmaShortcutsTest, WhileAllShortcutsAreBlockedTheirKeysDoNothing) {
    const std::vector<HotKeyRequest> requests{{kRight, kControlOption, {0, 1}},
                                              {kLeft, kControlOption, {0, 2}}};
    const auto claims = shortcuts.registerHotKeys(requests);
    std::vector<std::uint32_t> pressed;
    const auto handler = shortcuts.installHandler([&](std::uint32_t id) { pressed.push_back(id); });

    auto block = shortcuts.blockAll();
    ASSERT_TRUE(waitForPlasma());
    session.input().press({key::kLeftControl, key::kLeftAlt, key::kRight});
    block.reset();
    ASSERT_TRUE(waitForPlasma());
    session.input().press({key::kLeftControl, key::kLeftAlt, key::kLeft});

    EXPECT_TRUE(dispatchUntil([&] { return !pressed.empty(); }));
    EXPECT_EQ(pressed, std::vector<std::uint32_t>({2}));
}

TEST_F(PlasmaShortcutsTest, AKeyThatTypesNothingIsTakenUntilALayoutHasASymbolForIt) {
    constexpr std::uint32_t kYen = 93;
    const auto claims = claim(kYen, 100);
    ASSERT_NE(claims.front(), nullptr);
    ASSERT_EQ(shortcuts.taken(), std::vector{100U});

    layout.setKeymap(xkb::keymapOf("jp"));

    EXPECT_TRUE(dispatchUntil([&] { return shortcuts.taken().empty(); }));
    EXPECT_FALSE(session.keysOf("hotkey100").empty());
}

TEST_F(PlasmaShortcutsTest, AKeyThatTypesNothingInANewLayoutIsTakenAlthoughTheOldOneIsGrantedLater) {
    constexpr std::uint32_t kYen = 93;
    layout.setKeymap(xkb::keymapOf("jp"));
    const auto claims = claim(kYen, 100);
    ASSERT_TRUE(waitForPlasma()); // the reply has arrived, and has not been dispatched

    layout.setKeymap(xkb::Keymap::us());
    link.dispatch();

    EXPECT_EQ(shortcuts.taken(), std::vector{100U});
}

TEST_F(PlasmaShortcutsTest, AHotKeyThatAnotherProgramHasAtTheStartIsTakenUntilItIsFree) {
    setKeys("another", "something", {kControlAltRight});
    const auto right = claim(kRight, 100);
    const auto left = claim(kLeft, 101);

    shortcuts.releaseLeftovers(x11test::kPatience);

    EXPECT_TRUE(dispatchUntil([&] { return shortcuts.taken() == std::vector{100U}; }));
    send("unregister", "ss", {std::string("another"), std::string("something")});
    shortcuts.retryTaken();
    EXPECT_TRUE(dispatchUntil([&] { return shortcuts.taken().empty(); }));
}

TEST_F(PlasmaShortcutsTest, AHotKeyThatAnEarlierRunHasUsedForSomethingElseIsNotTaken) {
    setKeys("tessarel", "center", {kControlAltRight});
    const auto right = claim(kRight, 100);

    shortcuts.releaseLeftovers(x11test::kPatience);

    EXPECT_TRUE(dispatchUntil([&] { return session.keysOf("hotkey100") == std::vector{kControlAltRight}; }));
    EXPECT_EQ(session.shortcuts(), std::vector<std::string>{"hotkey100"});
    ASSERT_TRUE(waitForPlasma());
    link.dispatch(); // the reply to the second request
    EXPECT_TRUE(shortcuts.taken().empty());
}

TEST_F(PlasmaShortcutsTest, AHotKeyThatTheUserTakesAwayInTheSystemSettingsIsTakenUntilItIsGivenBack) {
    const auto right = claim(kRight, 100);
    const auto left = claim(kLeft, 101);

    changeKeys("tessarel", "hotkey100", {});
    EXPECT_TRUE(dispatchUntil([&] { return shortcuts.taken() == std::vector{100U}; }));

    changeKeys("tessarel", "hotkey100", {kControlAltRight});
    EXPECT_TRUE(dispatchUntil([&] { return shortcuts.taken().empty(); }));
}

TEST_F(PlasmaShortcutsTest, AHotKeyThatTheUserGivesAnotherCombinationIsTakenAndTakenBackWhenItIsRetried) {
    const auto claims = claim(kRight, 100);

    changeKeys("tessarel", "hotkey100", {kMetaK});
    ASSERT_TRUE(dispatchUntil([&] { return shortcuts.taken() == std::vector{100U}; }));
    shortcuts.retryTaken();

    EXPECT_TRUE(dispatchUntil([&] { return shortcuts.taken().empty(); }));
    EXPECT_EQ(session.keysOf("hotkey100"), std::vector{kControlAltRight});
}

TEST_F(PlasmaShortcutsTest, AChangeOfAnotherProgramsShortcutTakesNoHotKeyOfTheSameName) {
    const auto claims = claim(kRight, 100);
    setKeys("another", "hotkey100", {kMetaK});

    changeKeys("another", "hotkey100", {});
    for (int roundTrips = 0; roundTrips < 2; ++roundTrips) { // also for what the change makes the program ask
        ASSERT_TRUE(waitForPlasma());
        link.dispatch();
    }

    EXPECT_TRUE(shortcuts.taken().empty());
}

TEST_F(PlasmaShortcutsTest, AKeyThatTypesNothingStaysTakenWhenTheUserClearsIt) {
    constexpr std::uint32_t kYen = 93;
    const auto claims = claim(kYen, 100);

    changeKeys("tessarel", "hotkey100", {0}); // no key, as an empty field of the settings has it
    for (int roundTrips = 0; roundTrips < 2; ++roundTrips) {
        ASSERT_TRUE(waitForPlasma());
        link.dispatch();
    }

    EXPECT_EQ(shortcuts.taken(), std::vector{100U});
}

TEST_F(PlasmaKeysTest, CommandsFromATerminalMoveTheActiveWindowAndQuit) {
    constexpr int kNotRunning = 3;
    session.openEditor();
    ASSERT_TRUE(session.waitForCommands());

    EXPECT_EQ(session.command({"right-half"}), 0);
    EXPECT_EQ(session.settledFrame(kEditor, kRightOfFirst), kRightOfFirst);
    EXPECT_EQ(session.command({"quit"}), 0);

    EXPECT_EQ(session.program().waitForExit(), 0);
    EXPECT_EQ(session.command({"right-half"}), kNotRunning);
}

} // namespace
} // namespace tessarel::plasmatest
