// SPDX-License-Identifier: MIT

#include "desktop/settings_fixture.h"

#include <xcb/xtest.h>

#include <initializer_list>
#include <optional>
#include <utility>

namespace tessarel::x11test {
namespace {

constexpr xcb_keycode_t kEscape = 9;
constexpr xcb_keycode_t kB = 56;
constexpr Combination kFree{kB, kControlAlt};
constexpr Combination kZone1{key::kDigit1, kControlAlt};

/// A recorder button on the Shortcuts tab, used with the keyboard and mouse of a real server.
class RecorderDesktopTest : public SettingsDesktopTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(SettingsDesktopTest::SetUp());
        ASSERT_NO_FATAL_FAILURE(showTab("Shortcuts"));
        recorder = button("Snap to Zone 2");
    }

    void record() {
        click(recorder);
        ASSERT_TRUE(comesToSay(recorder, "Press keys..."));
        ASSERT_TRUE(waitUntil([this] { return !keyboard.isFree(); }));
    }

    [[nodiscard]] bool becomesFree() {
        return waitUntil([this] { return keyboard.isFree(); });
    }

    /// Waits until the program has received several auto-repeats of the pressed key; each of them wakes it.
    [[nodiscard]] bool waitUntilRepeatedTo() {
        constexpr int kTimes = 10;
        std::optional<long> last;
        int times = 0;
        return waitUntil([&] {
            const std::optional<long> now = program->timesAsleep();
            if (now && std::exchange(last, now) != now)
                ++times;
            return times > kTimes;
        });
    }

    void fake(std::uint8_t type, std::initializer_list<xcb_keycode_t> keys) {
        for (const xcb_keycode_t key : keys)
            xcb_test_fake_input(observer.x().get(), type, key, XCB_CURRENT_TIME, XCB_WINDOW_NONE, 0, 0, 0);
        observer.x().roundTrip();
    }

    TestClient other{server};
    Accessible recorder;
};

TEST_F(RecorderDesktopTest, ACombinationThatIsAHotKeyReachesTheRecorder) {
    record();

    // The message is shown for little more than a second. If reading takes longer, the next press shows it
    // again.
    EXPECT_TRUE(waitUntil([&] {
        keyboard.press(kZone1);
        return reader.look(recorder).description == "In use: Snap to Zone 1";
    })) << reader.look(recorder).description;
    EXPECT_TRUE(comesToSay(recorder, "Press keys..."));
    EXPECT_FALSE(keyboard.isFree());
}

TEST_F(RecorderDesktopTest, AKeyThatCannotBeBoundIsAnsweredByAMessage) {
    constexpr xcb_keycode_t kPrint = 107;
    constexpr xcb_keycode_t kPause = 127;
    constexpr xcb_keycode_t kRaiseVolume = 123;
    constexpr xcb_keycode_t kAltGr = 108;
    keyboard.setLayout("de"); // on which Right Alt is AltGr
    record();

    for (const xcb_keycode_t key : {kPrint, kPause, kRaiseVolume, kAltGr}) {
        EXPECT_TRUE(waitUntil([&] {
            keyboard.press({key, 0});
            return reader.look(recorder).description == "Cannot use this key";
        })) << int{key};
        EXPECT_TRUE(comesToSay(recorder, "Press keys..."));
    }
    EXPECT_FALSE(keyboard.isFree());
}

TEST_F(RecorderDesktopTest, TheKeyIsNamedAsItIsPrintedAndStaysWhenTheLayoutChanges) {
    constexpr xcb_keycode_t kLeftOfX = 52; // Z on a US keyboard, Y on a German one
    keyboard.setLayout("de");
    record();

    keyboard.press({kLeftOfX, kControlAlt});

    EXPECT_TRUE(comesToSay(recorder, "Ctrl+Alt+Y"));
    EXPECT_TRUE(waitUntilStored(observer, server, R"("zone2":{"keyCode":6,"mods":6144})"))
        << storedSettings(server);
    keyboard.setLayout("fr");
    EXPECT_TRUE(comesToSay(recorder, "Ctrl+Alt+W"));
    EXPECT_TRUE(comesToSay(button("Snap to Zone 1"), "Ctrl+Alt+1"));
    keyboard.setLayout("us");
    EXPECT_TRUE(comesToSay(recorder, "Ctrl+Alt+Z"));
    EXPECT_TRUE(waitUntil([&] { return keyboard.held({kLeftOfX, kControlAlt}); }));
}

TEST_F(RecorderDesktopTest, ANewHotKeyReplacesTheOldOneAtOnce) {
    record();

    keyboard.press(kFree);

    EXPECT_TRUE(comesToSay(recorder, "Ctrl+Alt+B"));
    EXPECT_TRUE(becomesFree());
    EXPECT_TRUE(waitUntil([&] { return keyboard.held(kFree); }));
    EXPECT_TRUE(keyboard.waitUntilNotHeld({key::kDigit1 + 1, kControlAlt}));
    EXPECT_TRUE(waitUntilStored(observer, server, R"("zone2":{"keyCode":11,"mods":6144})"))
        << storedSettings(server);
}

TEST_F(RecorderDesktopTest, ANewHotKeyMovesAWindow) {
    record();
    keyboard.press(kFree);
    ASSERT_TRUE(waitUntil([&] { return keyboard.held(kFree); }));
    ASSERT_TRUE(becomesFree());
    const xcb_window_t target = other.open();
    observer.activate(target);
    ASSERT_TRUE(waitUntil([&] { return observer.activeWindow() == target; }));
    ASSERT_TRUE(observer.settle());
    observer.watch(target);

    keyboard.press(kFree);

    const Frame zone2{533, 0, 533, 450};
    EXPECT_TRUE(waitUntil([&] { return observer.outerFrame(target) == zone2; }))
        << testing::PrintToString(observer.outerFrame(target).value_or(Frame{}).x);
}

TEST_F(RecorderDesktopTest, TheSuperKeyIsRecordedAsSuper) {
    record();

    keyboard.press({kB, XCB_MOD_MASK_4 | XCB_MOD_MASK_SHIFT});

    EXPECT_TRUE(comesToSay(recorder, "Shift+Super+B"));
}

TEST_F(RecorderDesktopTest, AShortcutOfTheWindowIsRecordedAndDoesNotCloseIt) {
    record();
    constexpr xcb_keycode_t kW = 25;

    keyboard.press({kW, XCB_MOD_MASK_CONTROL});

    EXPECT_TRUE(comesToSay(recorder, "Ctrl+W"));
    ASSERT_TRUE(waitUntilAtRest());
    ASSERT_TRUE(observer.settle());
    EXPECT_EQ(observer.activeWindow(), window);
}

TEST_F(RecorderDesktopTest, ARecordedCombinationActsOnlyOnceItIsReleasedAndPressedAgain) {
    const Accessible arranging = button("Arrange windows into zones");
    const xcb_window_t bystander = other.open();
    ASSERT_TRUE(waitUntil([&] { return observer.activeWindow() == bystander; }));
    observer.activate(window);
    ASSERT_TRUE(waitUntil([&] { return observer.activeWindow() == window; }));
    ASSERT_TRUE(observer.settle());
    const auto before = observer.outerFrame(bystander);
    const auto hasMoved = [&] { return observer.outerFrame(bystander) != before; };
    runToEnd({"xset", "r", "rate", "30", "100"}, server.environment());
    ASSERT_TRUE(reader.act(arranging));
    ASSERT_TRUE(comesToSay(arranging, "Press keys..."));

    fake(XCB_KEY_PRESS, {key::kControl, key::kAlt, kB});
    EXPECT_TRUE(comesToSay(arranging, "Ctrl+Alt+B"));
    ASSERT_TRUE(waitUntilRepeatedTo());
    EXPECT_FALSE(hasMoved());
    fake(XCB_KEY_RELEASE, {kB});
    ASSERT_TRUE(becomesFree());
    fake(XCB_KEY_PRESS, {kB});
    fake(XCB_KEY_RELEASE, {kB, key::kAlt, key::kControl});

    EXPECT_TRUE(waitUntil(hasMoved));
}

TEST_F(RecorderDesktopTest, SpaceAndReturnStartARecording) {
    keyboard.press({key::kReturn, 0}); // no effect yet: the focus is on the tab bar
    constexpr xcb_keycode_t kTab = 23;
    constexpr xcb_keycode_t kSpace = 65;
    keyboard.press({kTab, 0});
    const Accessible first = button("Snap to Zone 1");
    ASSERT_TRUE(waitUntil([&] { return reader.look(first).isFocused; }));

    for (const xcb_keycode_t starter : {kSpace, key::kReturn}) {
        keyboard.press({starter, 0});
        EXPECT_TRUE(comesToSay(first, "Press keys..."));
        keyboard.press({kEscape, 0});
        EXPECT_TRUE(comesToSay(first, "Ctrl+Alt+1"));
    }
}

TEST_F(RecorderDesktopTest, EscapeReleasesTheKeyboardGrab) {
    record();

    keyboard.press({kEscape, 0});

    EXPECT_TRUE(becomesFree());
    EXPECT_TRUE(comesToSay(recorder, "Ctrl+Alt+2"));
}

TEST_F(RecorderDesktopTest, ChangingTheTabReleasesTheKeyboardGrab) {
    record();

    showTab("General");

    EXPECT_TRUE(becomesFree());
}

TEST_F(RecorderDesktopTest, ActivatingAnotherWindowReleasesTheKeyboardGrab) {
    record();

    observer.activate(other.open());

    EXPECT_TRUE(becomesFree());
    EXPECT_TRUE(comesToSay(recorder, "Ctrl+Alt+2"));
}

TEST_F(RecorderDesktopTest, ClosingTheWindowReleasesTheKeyboardGrabAndEndsTheRecording) {
    record();

    observer.sendToRoot(window, "_NET_CLOSE_WINDOW", {XCB_CURRENT_TIME, 2, 0, 0, 0});

    EXPECT_TRUE(becomesFree());
    ASSERT_TRUE(waitUntil([this] { return !observer.managed(window); }));
    ASSERT_NO_FATAL_FAILURE(openSettings());
    EXPECT_TRUE(comesToSay(button("Snap to Zone 2"), "Ctrl+Alt+2"));
}

TEST_F(RecorderDesktopTest, KillingTheProgramReleasesTheKeyboardGrab) {
    record();

    program->process().kill();

    EXPECT_TRUE(becomesFree());
}

} // namespace
} // namespace tessarel::x11test
