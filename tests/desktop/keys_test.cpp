// SPDX-License-Identifier: MIT

#include "desktop/snap_fixture.h"

#include <array>
#include <set>

namespace tessarel::x11test {
namespace {

/// Lock states and keyboard layouts under each window manager. The destructor resets both.
class KeysTest : public SnapFixture {
protected:
    ~KeysTest() override {
        EXPECT_TRUE(setLocks(false, false));
        desktop.keyboard().setLayout("us");
    }

    bool setLocks(bool numLock, bool capsLock) {
        return desktop.keyboard().setNumLock(numLock) && desktop.keyboard().setCapsLock(capsLock);
    }

    const xcb_window_t window = desktop.open(client);
};

TEST_P(KeysTest, HotKeysWorkWithEveryStateOfTheLocks) {
    int number = 1;
    for (const bool numLock : {false, true})
        for (const bool capsLock : {false, true}) {
            ASSERT_TRUE(setLocks(numLock, capsLock));
            snap(window, number++);
        }
}

TEST_P(KeysTest, HotKeysAreTheSamePhysicalKeysOnEveryLayout) {
    for (const char* layout : {"us", "de", "fr"}) {
        desktop.keyboard().setLayout(layout);
        ASSERT_TRUE(desktop.waitUntilProgramRests());
        for (const int number : {1, 5, 2})
            snap(window, number);
        const Frame centre = centred(desktop.usableArea(), desktop.frame(window));

        desktop.press(hotkey::kCenter);

        EXPECT_EQ(desktop.settledFrame(window, centre), centre) << layout;
    }
}

TEST_P(KeysTest, HotKeysWorkAfterAnotherClientGrabbedTheKeyboard) {
    const Frame before = desktop.frame(window);
    ASSERT_TRUE(client.grabKeyboard());
    desktop.press(hotkey::zone(1));
    client.ungrabKeyboard();

    ASSERT_TRUE(desktop.waitUntilProgramRests());
    EXPECT_EQ(desktop.frame(window), before);
    snap(window, 2);
}

INSTANTIATE_TEST_SUITE_P(Every, KeysTest, testing::ValuesIn(kAllWindowManagers), managerName);

/// Combinations that another client grabbed first.
class HeldKeysTest : public testing::Test {
protected:
    Desktop desktop{{}};
    TestClient holder{desktop.server()};
    TestClient client{desktop.server()};

    Frame zoneFrame(int number) {
        return frameIn(desktop.usableArea(), kZones.at(static_cast<std::size_t>(number - 1)));
    }
};

TEST_F(HeldKeysTest, ACombinationGrabbedByAnotherProgramIsLeftToItAndTheOthersWork) {
    ASSERT_TRUE(holder.grabKey(hotkey::zone(2)));
    ASSERT_TRUE(desktop.start());
    const xcb_window_t window = desktop.open(client);
    const Frame before = desktop.frame(window);

    desktop.press(hotkey::zone(2));
    EXPECT_TRUE(desktop.observer().waitUntil([&] { return holder.keyPresses() == 1; }));
    ASSERT_TRUE(desktop.waitUntilProgramRests());
    EXPECT_EQ(desktop.frame(window), before);

    desktop.press(hotkey::zone(3));
    EXPECT_EQ(desktop.settledFrame(window, zoneFrame(3)), zoneFrame(3));
    EXPECT_TRUE(desktop.stop());
}

TEST_F(HeldKeysTest, ACombinationGrabbedByAnotherProgramInOneLockStateIsNotGrabbed) {
    const Combination withCapsLock{hotkey::zone(2).key,
                                   static_cast<std::uint16_t>(kControlAlt | XCB_MOD_MASK_LOCK)};
    ASSERT_TRUE(holder.grabKey(withCapsLock));

    ASSERT_TRUE(desktop.start());

    // The program sends all its grabs before it checks which of them failed, and then releases the rest of
    // this combination.
    EXPECT_TRUE(desktop.observer().waitUntil([&] { return holder.grabKey(hotkey::zone(2)); }))
        << "the program keeps the grabs with other lock states";
    EXPECT_TRUE(desktop.stop());
}

TEST_F(HeldKeysTest, ADisabledZoneHasNoHotKey) {
    ASSERT_TRUE(desktop.start());

    EXPECT_TRUE(desktop.keyboard().held(hotkey::zone(5)));
    EXPECT_FALSE(desktop.keyboard().held(hotkey::zone(6)));
    EXPECT_TRUE(desktop.stop());
}

TEST_F(HeldKeysTest, AllHotKeysAreReleasedWhenTheProgramExits) {
    ASSERT_TRUE(desktop.start());
    ASSERT_TRUE(desktop.keyboard().held(hotkey::kMaximize));

    ASSERT_TRUE(desktop.stop());

    EXPECT_TRUE(desktop.keyboard().waitUntilNotHeld(hotkey::kMaximize));
    EXPECT_TRUE(desktop.keyboard().waitUntilNotHeld(hotkey::zone(1)));
}

/// Those default hot keys of the program that a window manager grabs with its own default configuration.
struct DefaultKeys {
    WindowManagerKind manager;
    std::set<xcb_keycode_t> withControlAlt;
};

std::set<xcb_keycode_t> digits() {
    std::set<xcb_keycode_t> keys;
    for (int number = 1; number <= 9; ++number)
        keys.insert(hotkey::zone(number).key);
    return keys;
}

const std::set<xcb_keycode_t>& everyKey() {
    static const std::set<xcb_keycode_t> keys = [] {
        std::set<xcb_keycode_t> all = digits();
        all.insert(
            {key::kLeft, key::kRight, key::kUp, key::kDown, key::kReturn, key::kC, key::kBackspace, key::kA});
        return all;
    }();
    return keys;
}

std::vector<DefaultKeys> defaultKeys() {
    using enum WindowManagerKind;
    const std::set<xcb_keycode_t> arrows = {key::kLeft, key::kRight, key::kUp, key::kDown};
    std::set<xcb_keycode_t> icewm = digits();
    icewm.insert({key::kLeft, key::kRight, key::kDown});
    return {{Openbox, arrows}, {Xfwm4, arrows}, {Metacity, arrows},
            {Marco, arrows},   {Icewm, icewm},  {Fluxbox, {key::kLeft, key::kRight}},
            {Kwin, {}},        {Mutter, {}}};
}

class DefaultKeysTest : public testing::TestWithParam<DefaultKeys> {
protected:
    XServer server{serverFor(GetParam().manager)};
    WindowManager manager{server, GetParam().manager, OwnKeys::Kept};
    Observer observer{server.display()};
    Keyboard keyboard{server, observer};
};

TEST_P(DefaultKeysTest, TheWindowManagerGrabsTheseKeysByDefault) {
    const auto heldKeys = [this] {
        std::set<xcb_keycode_t> held;
        for (const xcb_keycode_t key : everyKey())
            if (keyboard.held({key, kControlAlt}))
                held.insert(key);
        return held;
    };

    EXPECT_TRUE(observer.waitUntil([&] { return heldKeys() == GetParam().withControlAlt; }))
        << testing::PrintToString(heldKeys());
}

INSTANTIATE_TEST_SUITE_P(Every, DefaultKeysTest, testing::ValuesIn(defaultKeys()),
                         [](const auto& instance) { return std::string(name(instance.param.manager)); });

} // namespace
} // namespace tessarel::x11test
