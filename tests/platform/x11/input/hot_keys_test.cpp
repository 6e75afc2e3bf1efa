// SPDX-License-Identifier: MIT

#include "platform/x11/input/hot_keys.h"

#include "model/settings/app_settings.h"
#include "platform/x11/event_loop.h"
#include "platform/x11/input/lock_modifiers.h"
#include "support/x11/keyboard.h"
#include "support/x11/observer.h"
#include "support/x11/x_server.h"

#include <gtest/gtest.h>
#include <xcb/xtest.h>

#include <initializer_list>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace tessarel::x11 {
namespace {

using x11test::kControlAlt;
using x11test::Keyboard;
using x11test::Observer;
using x11test::XServer;
namespace key = x11test::key;

constexpr std::uint32_t kCtrlOpt = 4096 + 2048;
constexpr std::uint32_t kVirtual1 = 18;
constexpr std::uint32_t kVirtual2 = 19;

class X11HotKeysTest : public testing::Test {
protected:
    [[nodiscard]] SubscriptionPtr claim(std::uint32_t keyCode, std::uint32_t mods, std::uint32_t id) {
        const HotKeyRequest request{keyCode, mods, {0, id}};
        return std::move(hotKeys->registerHotKeys({&request, 1}).front());
    }

    void press(xcb_keycode_t keycode, std::uint16_t modifiers = kControlAlt) {
        keyboard.press({keycode, modifiers});
        loop.settle();
    }

    /// Grabs one combination from another client, without the lock states.
    void holdByAnother(xcb_keycode_t keycode, std::uint16_t modifiers) {
        xcb_grab_key(observer.x().get(), 1, observer.root(), modifiers, keycode, XCB_GRAB_MODE_ASYNC,
                     XCB_GRAB_MODE_ASYNC);
        observer.x().roundTrip();
    }

    void releaseByAnother(xcb_keycode_t keycode, std::uint16_t modifiers) {
        xcb_ungrab_key(observer.x().get(), keycode, observer.root(), modifiers);
        observer.x().roundTrip();
    }

    /// Sends key events of one type, so that keys can stay pressed.
    void fake(std::uint8_t type, std::initializer_list<xcb_keycode_t> keys) {
        for (const xcb_keycode_t key : keys)
            xcb_test_fake_input(observer.x().get(), type, key, XCB_CURRENT_TIME, XCB_WINDOW_NONE, 0, 0, 0);
        observer.x().roundTrip();
    }

    void runTool(const std::vector<std::string>& command) {
        x11test::runToEnd(command, server.environment());
        loop.settle();
    }

    XServer server;
    Observer observer{server.display()};
    Keyboard keyboard{server, observer};
    EventLoop loop{server.display()};
    std::unique_ptr<X11HotKeys> hotKeys = std::make_unique<X11HotKeys>(loop.connection());
    std::vector<std::uint32_t> pressed;
    SubscriptionPtr handler = hotKeys->installHandler([this](std::uint32_t id) { pressed.push_back(id); });
};

using Ids = std::vector<std::uint32_t>;

TEST_F(X11HotKeysTest, APressIsDeliveredInEveryLockState) {
    const auto claimed = claim(kVirtual1, kCtrlOpt, 7);
    ASSERT_TRUE(claimed);

    for (const auto& [numLock, capsLock] :
         {std::pair(false, false), {true, false}, {false, true}, {true, true}}) {
        ASSERT_TRUE(keyboard.setNumLock(numLock));
        ASSERT_TRUE(keyboard.setCapsLock(capsLock));
        pressed.clear();
        press(key::kDigit1);
        EXPECT_EQ(pressed, Ids{7}) << "Num Lock " << numLock << ", Caps Lock " << capsLock;
    }
}

TEST_F(X11HotKeysTest, TheDigitsAreTheSamePhysicalKeysInEveryLayout) {
    const auto first = claim(kVirtual1, kCtrlOpt, 1);
    const auto second = claim(kVirtual2, kCtrlOpt, 2);

    for (const char* const layout : {"us", "de", "fr"}) {
        runTool({"setxkbmap", layout});
        pressed.clear();
        press(key::kDigit1);
        press(key::kDigit1 + 1);
        EXPECT_EQ(pressed, (Ids{1, 2})) << layout;
    }
}

TEST_F(X11HotKeysTest, ASecondLayoutOfTheKeyboardHasTheSameHotKeys) {
    const auto claimed = claim(kVirtual1, kCtrlOpt, 1);
    runTool({"setxkbmap", "-layout", "us,ru", "-option", "grp:shifts_toggle"});
    constexpr xcb_keycode_t kRightShift = 62;
    keyboard.press({kRightShift, XCB_MOD_MASK_SHIFT}); // both Shift keys switch to the next layout

    press(key::kDigit1);

    EXPECT_EQ(pressed, Ids{1});
}

TEST_F(X11HotKeysTest, FollowsNumLockToAnotherModifier) {
    const auto claimed = claim(kVirtual1, kCtrlOpt, 7);
    runTool({"xmodmap", "-e", "clear Mod2", "-e", "add Mod3 = Num_Lock"});
    ASSERT_EQ(lockModifiers(loop.connection()), XCB_MOD_MASK_LOCK | XCB_MOD_MASK_3);
    press(key::kNumLock, 0);

    press(key::kDigit1);

    EXPECT_EQ(pressed, Ids{7});
}

TEST_F(X11HotKeysTest, WorksWithoutANumLockModifier) {
    const auto claimed = claim(kVirtual1, kCtrlOpt, 7);
    runTool({"xmodmap", "-e", "clear Mod2"});
    ASSERT_EQ(lockModifiers(loop.connection()), XCB_MOD_MASK_LOCK);

    press(key::kDigit1);

    EXPECT_EQ(pressed, Ids{7});
}

TEST_F(X11HotKeysTest, TreatsScrollLockAsALock) {
    const auto claimed = claim(kVirtual1, kCtrlOpt, 7);
    runTool({"xmodmap", "-e", "add Mod3 = Scroll_Lock"});

    EXPECT_EQ(lockModifiers(loop.connection()), XCB_MOD_MASK_LOCK | XCB_MOD_MASK_2 | XCB_MOD_MASK_3);
    EXPECT_FALSE(keyboard.held({key::kDigit1, XCB_MOD_MASK_CONTROL}));
    EXPECT_TRUE(keyboard.held({key::kDigit1, kControlAlt | XCB_MOD_MASK_3}));
}

TEST_F(X11HotKeysTest, ACombinationLostByAMappingChangeIsTakenUntilItIsFree) {
    holdByAnother(key::kDigit1, kControlAlt | XCB_MOD_MASK_3);
    const auto lost = claim(kVirtual1, kCtrlOpt, 1);
    const auto kept = claim(kVirtual2, kCtrlOpt, 2);
    ASSERT_TRUE(hotKeys->taken().empty());
    int changes = 0;
    const auto changed = hotKeys->onTakenChange([&] { ++changes; });

    runTool({"xmodmap", "-e", "add Mod3 = Scroll_Lock"});
    EXPECT_EQ(hotKeys->taken(), Ids{1});
    EXPECT_EQ(changes, 1);
    press(key::kDigit1);
    press(key::kDigit1 + 1);
    EXPECT_EQ(pressed, Ids{2});

    releaseByAnother(key::kDigit1, kControlAlt | XCB_MOD_MASK_3);
    hotKeys->retryTaken();
    EXPECT_EQ(changes, 2);
    press(key::kDigit1);
    EXPECT_EQ(pressed, (Ids{2, 1}));
}

TEST_F(X11HotKeysTest, AMappingChangeWithoutALossIsNotReported) {
    const auto kept = claim(kVirtual1, kCtrlOpt, 1);
    int changes = 0;
    const auto changed = hotKeys->onTakenChange([&] { ++changes; });

    runTool({"xmodmap", "-e", "add Mod3 = Scroll_Lock"});

    EXPECT_TRUE(hotKeys->taken().empty());
    EXPECT_EQ(changes, 0);
}

TEST_F(X11HotKeysTest, ATakenCombinationStaysTakenWhenTheMappingChanges) {
    holdByAnother(key::kDigit1, kControlAlt);
    const auto claimed = claim(kVirtual1, kCtrlOpt, 1);
    releaseByAnother(key::kDigit1, kControlAlt);

    runTool({"xmodmap", "-e", "add Mod3 = Scroll_Lock"});

    // A window manager may be about to grab it again.
    EXPECT_FALSE(keyboard.held({key::kDigit1, kControlAlt}));
    EXPECT_EQ(hotKeys->taken(), Ids{1});
}

TEST_F(X11HotKeysTest, GrabsAllLockStatesOrNone) {
    holdByAnother(key::kDigit1, kControlAlt | XCB_MOD_MASK_2);

    const auto claimed = claim(kVirtual1, kCtrlOpt, 1);

    EXPECT_EQ(hotKeys->taken(), Ids{1});
    EXPECT_FALSE(keyboard.held({key::kDigit1, kControlAlt}));
    press(key::kDigit1);
    EXPECT_TRUE(pressed.empty());
    releaseByAnother(key::kDigit1, kControlAlt | XCB_MOD_MASK_2);
    hotKeys->retryTaken();
    press(key::kDigit1);
    EXPECT_EQ(pressed, Ids{1});
}

TEST_F(X11HotKeysTest, RetryingTakesOneRoundTripAndNoneIfNoCombinationIsTaken) {
    holdByAnother(key::kDigit1, kControlAlt);
    holdByAnother(key::kDigit1 + 1, kControlAlt);
    const auto one = claim(kVirtual1, kCtrlOpt, 1);
    auto two = claim(kVirtual2, kCtrlOpt, 2);
    ASSERT_EQ(hotKeys->taken(), (Ids{1, 2}));
    std::size_t before = loop.connection().roundTrips();

    hotKeys->retryTaken();
    EXPECT_LE(loop.connection().roundTrips() - before, 2U);

    releaseByAnother(key::kDigit1, kControlAlt);
    releaseByAnother(key::kDigit1 + 1, kControlAlt);
    hotKeys->retryTaken();
    ASSERT_TRUE(hotKeys->taken().empty());
    before = loop.connection().roundTrips();
    hotKeys->retryTaken();
    EXPECT_EQ(loop.connection().roundTrips(), before);
}

TEST_F(X11HotKeysTest, TheFirstOfTwoActionsWithTheSameKeysGetsThem) {
    const std::vector<HotKeyRequest> requests{{kVirtual1, kCtrlOpt, {0, 1}}, {kVirtual1, kCtrlOpt, {0, 2}}};

    auto claims = hotKeys->registerHotKeys(requests);

    ASSERT_TRUE(claims[0]);
    EXPECT_FALSE(claims[1]);
    claims.pop_back();
    press(key::kDigit1);
    EXPECT_EQ(pressed, Ids{1});
}

TEST_F(X11HotKeysTest, AHeldKeyFiresOnce) {
    const auto claimed = claim(kVirtual1, kCtrlOpt, 7);
    runTool({"xset", "r", "rate", "30", "100"});
    int repetitions = 0;
    const auto count = loop.connection().onEvent(
        [&](const Connection::Event& event) { repetitions += event.response_type == XCB_KEY_PRESS ? 1 : 0; });

    fake(XCB_KEY_PRESS, {key::kControl, key::kAlt, key::kDigit1});
    ASSERT_TRUE(observer.waitUntil([&] {
        loop.settle();
        return repetitions >= 4;
    }));
    fake(XCB_KEY_RELEASE, {key::kDigit1, key::kAlt, key::kControl});
    loop.settle();
    EXPECT_EQ(pressed, Ids{7});

    press(key::kDigit1);
    EXPECT_EQ(pressed, (Ids{7, 7}));
}

TEST_F(X11HotKeysTest, OverlappingKeysFireAtEachPress) {
    const auto first = claim(kVirtual1, kCtrlOpt, 1);
    const auto second = claim(kVirtual2, kCtrlOpt, 2);
    constexpr xcb_keycode_t kDigit2 = key::kDigit1 + 1;
    fake(XCB_KEY_PRESS, {key::kControl, key::kAlt});

    for (int round = 0; round < 2; ++round) {
        fake(XCB_KEY_PRESS, {key::kDigit1, kDigit2});
        fake(XCB_KEY_RELEASE, {key::kDigit1, kDigit2}); // others get the second one
        loop.settle();
    }

    EXPECT_EQ(pressed, (Ids{1, 2, 1, 2}));
}

TEST_F(X11HotKeysTest, ASyntheticPressOfAnotherClientIsIgnored) {
    const auto claimed = claim(kVirtual1, kCtrlOpt, 7);
    const xcb_window_t ours = xcb_generate_id(loop.connection().xcb());
    xcb_create_window(loop.connection().xcb(), XCB_COPY_FROM_PARENT, ours, observer.root(), 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    loop.settle();
    xcb_key_press_event_t madeUp{};
    madeUp.response_type = XCB_KEY_PRESS;
    madeUp.detail = key::kDigit1;
    madeUp.state = kControlAlt;
    madeUp.root = madeUp.event = observer.root();
    xcb_send_event(observer.x().get(), 0, ours, 0, reinterpret_cast<const char*>(&madeUp));
    observer.x().roundTrip();

    loop.settle();

    EXPECT_TRUE(pressed.empty());
}

TEST_F(X11HotKeysTest, EndingARegistrationReleasesAllLockStates) {
    auto claimed = claim(kVirtual1, kCtrlOpt, 7);
    ASSERT_TRUE(keyboard.held({key::kDigit1, kControlAlt}));

    claimed.reset();
    loop.settle();

    for (const unsigned locks :
         {0U, XCB_MOD_MASK_LOCK + 0U, XCB_MOD_MASK_2 + 0U, XCB_MOD_MASK_LOCK + 0U + XCB_MOD_MASK_2})
        EXPECT_FALSE(keyboard.held({key::kDigit1, static_cast<std::uint16_t>(kControlAlt | locks)}));
    EXPECT_TRUE(claim(kVirtual1, kCtrlOpt, 8));
}

TEST_F(X11HotKeysTest, DestroyingTheServiceReleasesItsGrabsAndRegistrationsMayEndLater) {
    auto claimed = claim(kVirtual1, kCtrlOpt, 7);

    hotKeys.reset();
    loop.settle();

    EXPECT_FALSE(keyboard.held({key::kDigit1, kControlAlt}));
    claimed.reset();
}

TEST_F(X11HotKeysTest, AHandlerMayDestroyTheServiceDuringAPress) {
    auto claimed = claim(kVirtual1, kCtrlOpt, 7);
    handler = hotKeys->installHandler([this](std::uint32_t) { hotKeys.reset(); });

    press(key::kDigit1);
    press(key::kDigit1);

    EXPECT_FALSE(hotKeys);
}

TEST_F(X11HotKeysTest, RegisteringAllDefaultHotKeysTakesFewRoundTrips) {
    std::vector<HotKeyRequest> requests;
    for (const auto& [name, binding] : AppSettings().bindings)
        requests.push_back(
            {static_cast<std::uint32_t>(binding.keyCode), static_cast<std::uint32_t>(binding.mods), {}});
    ASSERT_EQ(requests.size(), 19U);
    const std::size_t before = loop.connection().roundTrips();

    const auto claims = hotKeys->registerHotKeys(requests);

    EXPECT_LE(loop.connection().roundTrips() - before, 2U);
    for (const auto& claimed : claims)
        EXPECT_TRUE(claimed);
    EXPECT_TRUE(hotKeys->taken().empty());
}

TEST_F(X11HotKeysTest, CanBeUsedAfterTheServerIsGone) {
    auto claimed = claim(kVirtual1, kCtrlOpt, 7);
    server.kill();

    const auto later = claim(kVirtual2, kCtrlOpt, 8);
    hotKeys->retryTaken();

    EXPECT_EQ(hotKeys->taken(), Ids{8});
    claimed.reset();
}

} // namespace
} // namespace tessarel::x11
