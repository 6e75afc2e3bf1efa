// SPDX-License-Identifier: MIT

#include "contract/contract_test.h"

namespace tessarel::contract {
namespace {

class SingleInstanceContract : public ContractTest {
protected:
    std::unique_ptr<SingleInstancePort> first = desktop->makeCopy();
    std::unique_ptr<SingleInstancePort> second = desktop->makeCopy();
    int reopened = 0;
};

TEST_F(SingleInstanceContract, TheFirstCopyClaimsTheDesktop) {
    EXPECT_TRUE(first->claim([this] { ++reopened; }, [] {}));
    EXPECT_EQ(reopened, 0);
}

TEST_F(SingleInstanceContract, ASecondCopyIsRefusedAndTheFirstIsNotified) {
    const auto claim = first->claim([this] { ++reopened; }, [] {});
    ASSERT_TRUE(claim);

    EXPECT_FALSE(second->claim([] { ADD_FAILURE() << "the wrong copy was notified"; }, [] {}));
    desktop->settle();
    EXPECT_EQ(reopened, 1);

    EXPECT_FALSE(desktop->makeCopy()->claim([] {}, [] {}));
    desktop->settle();
    EXPECT_EQ(reopened, 2);
}

TEST_F(SingleInstanceContract, AReleasedDesktopCanBeClaimedAgain) {
    auto claim = first->claim([this] { ++reopened; }, [] {});
    claim.reset();
    desktop->settle();

    EXPECT_TRUE(second->claim([] {}, [] {}));
    desktop->settle();
    EXPECT_EQ(reopened, 0);
}

TEST_F(SingleInstanceContract, ARefusedCopyDoesNotClaimTheDesktopLater) {
    auto claim = first->claim([this] { ++reopened; }, [] {});
    EXPECT_FALSE(second->claim([] {}, [] {}));
    claim.reset();
    desktop->settle();

    EXPECT_TRUE(desktop->makeCopy()->claim([] {}, [] {}));
}

class TrustContract : public ContractTest {};

TEST_F(TrustContract, AUsableDesktopIsTrusted) {
    EXPECT_TRUE(desktop->trust().isTrusted());
}

TEST_F(TrustContract, PromptingWhenTrustedChangesNothing) {
    desktop->trust().prompt();

    EXPECT_TRUE(desktop->trust().isTrusted());
}

class AlertSoundContract : public ContractTest {};

TEST_F(AlertSoundContract, TheAlertSoundDoesNotDisturbWindows) {
    const auto window = openWindow();
    desktop->alertSound().beep();
    desktop->settle();

    EXPECT_EQ(readFrame(desktop->element(window)), desktop->actualFrame(window));
}

} // namespace
} // namespace tessarel::contract
