// SPDX-License-Identifier: MIT

#include "contract/contract_test.h"

#include <vector>

namespace tessarel::contract {
namespace {

constexpr std::uint32_t kSignature = 0x47575744;

class HotKeyContract : public ContractTest {
protected:
    [[nodiscard]] SubscriptionPtr claim(std::uint32_t keyCode, std::uint32_t mods, std::uint32_t id) {
        const HotKeyRequest request{keyCode, mods, {kSignature, id}};
        auto claims = desktop->hotKeys().registerHotKeys({&request, 1});
        EXPECT_EQ(claims.size(), 1U);
        desktop->settle(); // a refusal may come later
        return std::move(claims.at(0));
    }

    void retryTaken() {
        desktop->hotKeys().retryTaken();
        desktop->settle();
    }

    void press(std::uint32_t keyCode, std::uint32_t mods) {
        desktop->pressKeys(keyCode, mods);
        desktop->settle();
    }

    std::vector<std::uint32_t> pressed;
    SubscriptionPtr handler =
        desktop->hotKeys().installHandler([this](std::uint32_t id) { pressed.push_back(id); });
};

class ExclusiveHotKeyContract : public HotKeyContract {
protected:
    void SetUp() override { skipUnlessHotKeysAreExclusive(); }
};

TEST_F(HotKeyContract, APressDeliversTheIdOnce) {
    const auto hotKey = claim(kKey1, kCtrlOpt, 7);
    ASSERT_TRUE(hotKey);

    press(kKey1, kCtrlOpt);
    EXPECT_EQ(pressed, (std::vector<std::uint32_t>{7}));

    press(kKey1, kCtrlOpt);
    EXPECT_EQ(pressed, (std::vector<std::uint32_t>{7, 7}));
}

TEST_F(HotKeyContract, ABatchReturnsOneEntryPerRequestInOrder) {
    const std::vector<HotKeyRequest> requests{{kKey1, kCtrlOpt, {kSignature, 0}},
                                              {4000, kCtrlOpt, {kSignature, 1}},
                                              {kKeyC, kCtrlOpt, {kSignature, 14}}};

    const auto claims = desktop->hotKeys().registerHotKeys(requests);

    ASSERT_EQ(claims.size(), 3U);
    EXPECT_TRUE(claims[0]);
    EXPECT_FALSE(claims[1]);
    EXPECT_TRUE(claims[2]);
    press(kKeyC, kCtrlOpt);
    press(kKey1, kCtrlOpt);
    EXPECT_EQ(pressed, (std::vector<std::uint32_t>{14, 0}));
}

TEST_F(HotKeyContract, AnEmptyBatchReturnsNoClaims) {
    EXPECT_TRUE(desktop->hotKeys().registerHotKeys({}).empty());
}

TEST_F(HotKeyContract, OtherKeysAndModifiersDoNotTriggerTheHotKey) {
    const auto hotKey = claim(kKey1, kCtrlOpt, 7);
    ASSERT_TRUE(hotKey);

    press(kKey2, kCtrlOpt);
    press(kKey1, 4096);
    press(kKey1, kCtrlOpt + 512);

    EXPECT_TRUE(pressed.empty());
}

TEST_F(HotKeyContract, TheFourModifiersAreDistinguished) {
    std::vector<SubscriptionPtr> claims;
    const std::vector<std::uint32_t> modifiers{256, 512 + 4096, 2048, 4096, 256 + 512 + 2048 + 4096};
    for (const std::uint32_t mods : modifiers)
        claims.push_back(claim(kKeyC, mods, mods));

    for (const std::uint32_t mods : modifiers)
        press(kKeyC, mods);

    EXPECT_EQ(pressed, modifiers);
}

TEST_F(ExclusiveHotKeyContract, ACombinationOfAnotherProgramIsTaken) {
    const auto other = desktop->holdByAnotherProgram(kKey1, kCtrlOpt);
    ASSERT_TRUE(other);

    const auto taken = claim(kKey1, kCtrlOpt, 7);
    const auto free = claim(kKey2, kCtrlOpt, 8);

    EXPECT_TRUE(taken);
    EXPECT_EQ(desktop->hotKeys().taken(), (std::vector<std::uint32_t>{7}));
    press(kKey1, kCtrlOpt);
    EXPECT_TRUE(pressed.empty());
}

TEST_F(ExclusiveHotKeyContract, ATakenCombinationIsTakenOverOnceItIsFree) {
    auto other = desktop->holdByAnotherProgram(kKey1, kCtrlOpt);
    const auto hotKey = claim(kKey1, kCtrlOpt, 7);
    int changes = 0;
    const auto observer = desktop->hotKeys().onTakenChange([&] { ++changes; });
    retryTaken();
    EXPECT_EQ(changes, 0);
    EXPECT_EQ(desktop->hotKeys().taken().size(), 1U);

    other.reset();
    retryTaken();

    EXPECT_EQ(changes, 1);
    EXPECT_TRUE(desktop->hotKeys().taken().empty());
    press(kKey1, kCtrlOpt);
    EXPECT_EQ(pressed, (std::vector<std::uint32_t>{7}));
}

TEST_F(ExclusiveHotKeyContract, ATakenCombinationIsNotTakenOverAfterItsClaimHasEnded) {
    auto other = desktop->holdByAnotherProgram(kKey1, kCtrlOpt);
    auto hotKey = claim(kKey1, kCtrlOpt, 7);

    hotKey.reset();
    EXPECT_TRUE(desktop->hotKeys().taken().empty());
    other.reset();
    retryTaken();

    press(kKey1, kCtrlOpt);
    EXPECT_TRUE(pressed.empty());
}

TEST_F(ExclusiveHotKeyContract, ASecondClaimOfATakenCombinationIsRefused) {
    const auto other = desktop->holdByAnotherProgram(kKey1, kCtrlOpt);
    const auto hotKey = claim(kKey1, kCtrlOpt, 7);

    EXPECT_FALSE(claim(kKey1, kCtrlOpt, 8));

    EXPECT_EQ(desktop->hotKeys().taken(), (std::vector<std::uint32_t>{7}));
}

TEST_F(HotKeyContract, ARegisteredCombinationIsNotTaken) {
    const auto hotKey = claim(kKey1, kCtrlOpt, 7);
    EXPECT_FALSE(claim(kKey1, kCtrlOpt, 8));

    EXPECT_TRUE(desktop->hotKeys().taken().empty());
    retryTaken();

    press(kKey1, kCtrlOpt);
    EXPECT_EQ(pressed, (std::vector<std::uint32_t>{7}));
}

TEST_F(HotKeyContract, ASecondClaimOfTheSameCombinationIsRefusedAndTheFirstStays) {
    const auto first = claim(kKey1, kCtrlOpt, 7);
    ASSERT_TRUE(first);

    EXPECT_FALSE(claim(kKey1, kCtrlOpt, 8));

    press(kKey1, kCtrlOpt);
    EXPECT_EQ(pressed, (std::vector<std::uint32_t>{7}));
}

TEST_F(HotKeyContract, TheSecondOfTwoEqualRequestsOfABatchIsRefused) {
    const std::vector<HotKeyRequest> requests{{kKey1, kCtrlOpt, {kSignature, 7}},
                                              {kKey1, kCtrlOpt, {kSignature, 8}}};

    const auto claims = desktop->hotKeys().registerHotKeys(requests);

    ASSERT_EQ(claims.size(), 2U);
    EXPECT_TRUE(claims[0]);
    EXPECT_FALSE(claims[1]);
    press(kKey1, kCtrlOpt);
    EXPECT_EQ(pressed, (std::vector<std::uint32_t>{7}));
}

TEST_F(HotKeyContract, AKeyCodeThatNoKeyboardHasIsRefused) {
    for (const std::uint32_t keyCode : {4000U, 0x7fffffffU, 0xffffffffU})
        EXPECT_FALSE(claim(keyCode, kCtrlOpt, 7)) << keyCode;
}

TEST_F(HotKeyContract, ModifierBitsBeyondTheFourAreRefused) {
    for (const std::uint32_t bit : {1U, 128U, 1024U, 8192U, 0x80000000U})
        EXPECT_FALSE(claim(kKey1, kCtrlOpt + bit, 7)) << bit;
}

TEST_F(HotKeyContract, DestroyingAClaimReleasesTheCombination) {
    auto hotKey = claim(kKey1, kCtrlOpt, 7);
    ASSERT_TRUE(hotKey);
    hotKey.reset();

    press(kKey1, kCtrlOpt);

    EXPECT_TRUE(pressed.empty());
    EXPECT_TRUE(desktop->holdByAnotherProgram(kKey1, kCtrlOpt));
}

TEST_F(HotKeyContract, ADestroyedHandlerIsNotCalled) {
    const auto hotKey = claim(kKey1, kCtrlOpt, 7);
    handler.reset();

    press(kKey1, kCtrlOpt);

    EXPECT_TRUE(pressed.empty());
}

TEST_F(HotKeyContract, AHandlerMayDestroyTheClaimOfThePressedHotKey) {
    SubscriptionPtr hotKey;
    handler = desktop->hotKeys().installHandler([&](std::uint32_t id) {
        pressed.push_back(id);
        hotKey.reset();
    });
    hotKey = claim(kKey1, kCtrlOpt, 7);

    press(kKey1, kCtrlOpt);
    press(kKey1, kCtrlOpt);

    EXPECT_EQ(pressed, (std::vector<std::uint32_t>{7}));
}

} // namespace
} // namespace tessarel::contract
