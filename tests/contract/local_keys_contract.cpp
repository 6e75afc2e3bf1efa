// SPDX-License-Identifier: MIT

#include "contract/contract_test.h"
#include "model/carbon_mods.h"

#include <vector>

namespace tessarel::contract {
namespace {

constexpr std::uint32_t kEveryModifier = 256 + 512 + 2048 + 4096;
constexpr KeyDown kKey1Down{kKey1, kControlFlag | kOptionFlag};

class LocalKeysContract : public ContractTest {
protected:
    [[nodiscard]] SubscriptionPtr monitor() {
        return desktop->localKeys().monitorKeyDown([this](const KeyDown& key) {
            keys.push_back(key);
            return true;
        });
    }

    [[nodiscard]] SubscriptionPtr claim(std::uint32_t keyCode) {
        const HotKeyRequest request{keyCode, kCtrlOpt, {0, 7}};
        return std::move(desktop->hotKeys().registerHotKeys({&request, 1}).at(0));
    }

    void press(std::uint32_t keyCode, std::uint32_t mods = kCtrlOpt) {
        desktop->pressKeys(keyCode, mods);
        desktop->settle();
    }

    std::vector<KeyDown> keys;
    int hotKeysPressed = 0;
    SubscriptionPtr handler = desktop->hotKeys().installHandler([this](std::uint32_t) { ++hotKeysPressed; });
};

using Keys = std::vector<KeyDown>;

TEST_F(LocalKeysContract, AKeyInAnOwnWindowIsReportedWithItsModifiers) {
    desktop->focusOwnWindow();
    const auto monitored = monitor();

    press(kKeyC, 0);
    press(kKeyC, kEveryModifier);

    const ModifierFlags every = kShiftFlag | kControlFlag | kOptionFlag | kCommandFlag;
    EXPECT_EQ(keys, (Keys{{kKeyC, 0}, {kKeyC, every}}));
}

TEST_F(LocalKeysContract, AnOwnHotKeyIsReportedToTheMonitorAndDoesNotFire) {
    const auto hotKey = claim(kKey1);
    ASSERT_TRUE(hotKey);
    desktop->focusOwnWindow();
    const auto monitored = monitor();

    press(kKey1);

    EXPECT_EQ(keys, Keys{kKey1Down});
    EXPECT_EQ(hotKeysPressed, 0);
}

class ExclusiveLocalKeysContract : public LocalKeysContract {
protected:
    void SetUp() override { skipUnlessHotKeysAreExclusive(); }
};

TEST_F(ExclusiveLocalKeysContract, AHotKeyOfAnotherProgramIsReportedToTheMonitor) {
    const auto held = desktop->holdByAnotherProgram(kKey1, kCtrlOpt);
    ASSERT_TRUE(held);
    desktop->focusOwnWindow();
    const auto monitored = monitor();

    press(kKey1);

    EXPECT_EQ(keys, Keys{kKey1Down});
}

TEST_F(LocalKeysContract, HotKeysFireAgainAfterTheMonitorIsDestroyed) {
    const auto hotKey = claim(kKey1);
    desktop->focusOwnWindow();
    auto monitored = monitor();
    monitored.reset();
    desktop->settle();

    press(kKey1);

    EXPECT_TRUE(keys.empty());
    EXPECT_EQ(hotKeysPressed, 1);
}

TEST_F(LocalKeysContract, KeysForAnotherProgramAreNotReported) {
    const auto hotKey = claim(kKey1);
    desktop->focusOwnWindow();
    const auto monitored = monitor();
    desktop->focus(openWindow());

    press(kKeyC);
    press(kKey1);

    EXPECT_TRUE(keys.empty());
    EXPECT_EQ(hotKeysPressed, 1);
}

TEST_F(LocalKeysContract, KeysAreReportedAgainWhenAnOwnWindowRegainsTheFocus) {
    const auto hotKey = claim(kKey1);
    const auto monitored = monitor();
    desktop->focus(openWindow());
    desktop->focusOwnWindow();

    press(kKey1);

    EXPECT_EQ(keys, Keys{kKey1Down});
    EXPECT_EQ(hotKeysPressed, 0);
}

TEST_F(LocalKeysContract, NoMonitorIsCalledAfterTheOneThatConsumesTheKey) {
    desktop->focusOwnWindow();
    int declined = 0;
    const auto declining = desktop->localKeys().monitorKeyDown([&](const KeyDown&) {
        ++declined;
        return false;
    });
    const auto consuming = monitor();
    const auto deaf = desktop->localKeys().monitorKeyDown([](const KeyDown&) {
        ADD_FAILURE() << "the handler was called for a consumed key";
        return true;
    });

    press(kKey1);

    EXPECT_EQ(declined, 1);
    EXPECT_EQ(keys, Keys{kKey1Down});
}

TEST_F(LocalKeysContract, DestroyingOneOfTwoMonitorsKeepsTheOther) {
    desktop->focusOwnWindow();
    auto first = monitor();
    const auto second = monitor();
    first.reset();

    press(kKey1);

    EXPECT_EQ(keys, Keys{kKey1Down});
}

TEST_F(LocalKeysContract, AHandlerMayDestroyItsMonitor) {
    desktop->focusOwnWindow();
    SubscriptionPtr monitored;
    monitored = desktop->localKeys().monitorKeyDown([&](const KeyDown& key) {
        monitored.reset();
        keys.push_back(key);
        return true;
    });

    press(kKey1);
    press(kKey1);

    EXPECT_EQ(keys, Keys{kKey1Down});
}

} // namespace
} // namespace tessarel::contract
