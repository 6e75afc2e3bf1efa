// SPDX-License-Identifier: MIT

#include "macos/mac_test.h"

#include <stdexcept>

namespace tessarel::macos {
namespace {

class MacSingleInstanceTest : public MacTest {
protected:
    static constexpr ProcessId kFirst = 100;
    static constexpr ProcessId kSecond = 200;

    MacSingleInstanceTest() { fakemac::mac().ownBundleIdentifier = "com.example.tessarel-under-test"; }

    static void start(ProcessId pid, std::uint64_t startedAt) {
        fakemac::launch(pid,
                        {.startedAt = startedAt, .bundleIdentifier = fakemac::mac().ownBundleIdentifier});
    }
    [[nodiscard]] SubscriptionPtr claimAs(ProcessId pid) {
        fakemac::mac().ownPid = pid;
        return desktop->singleInstance.claim([this] { ++reopened; }, [] {});
    }

    int reopened = 0;
};

TEST_F(MacSingleInstanceTest, AnExecutableOutsideABundleFindsNoOtherCopy) {
    fakemac::mac().ownBundleIdentifier = std::nullopt;
    fakemac::launch(8, {.bundleIdentifier = ""});

    EXPECT_TRUE(desktop->singleInstance.claim([] {}, [] {}));
}

TEST_F(MacSingleInstanceTest, TheCopyThatStartedFirstStays) {
    start(kFirst, 5'000'000);
    start(kSecond, 5'000'001);

    EXPECT_FALSE(claimAs(kSecond));
    EXPECT_TRUE(claimAs(kFirst));
}

TEST_F(MacSingleInstanceTest, TheStartTimeTakesPrecedenceOverTheProcessId) {
    start(kFirst, 6'000'000);
    start(kSecond, 5'999'999);

    EXPECT_FALSE(claimAs(kFirst));
    EXPECT_TRUE(claimAs(kSecond));
}

TEST_F(MacSingleInstanceTest, OfCopiesStartedAtTheSameTimeTheLowerProcessIdStays) {
    start(kFirst, 5'000'000);
    start(kSecond, 5'000'000);

    EXPECT_FALSE(claimAs(kSecond));
    EXPECT_TRUE(claimAs(kFirst));
}

TEST_F(MacSingleInstanceTest, ACopyWithoutAProcessIsIgnored) {
    start(-1, 1);
    start(kFirst, 5'000'000);

    EXPECT_TRUE(claimAs(kFirst));
}

TEST_F(MacSingleInstanceTest, AnotherApplicationIsIgnored) {
    fakemac::launch(kFirst, {.startedAt = 1, .bundleIdentifier = "org.example.mail"});
    start(kSecond, 5'000'000);

    EXPECT_TRUE(claimAs(kSecond));
}

TEST_F(MacSingleInstanceTest, ACopyWithoutAStartTimeGivesWay) {
    start(kSecond, 5'000'000);

    EXPECT_FALSE(claimAs(kFirst));
}

TEST_F(MacSingleInstanceTest, OpeningTheRunningProgramAgainIsReported) {
    start(kFirst, 5'000'000);
    const auto claim = claimAs(kFirst);

    EXPECT_TRUE(fakemac::openAgain());
    EXPECT_EQ(reopened, 1);
}

TEST_F(MacSingleInstanceTest, OpeningAgainIsReportedAfterTheSystemHasSetItsOwnHandlers) {
    start(kFirst, 5'000'000);
    const auto claim = claimAs(kFirst);
    fakemac::finishLaunching();

    EXPECT_TRUE(fakemac::openAgain());
    EXPECT_EQ(reopened, 1);
}

TEST_F(MacSingleInstanceTest, ARefusedOrReleasedClaimHandlesNoReopenEvent) {
    start(kFirst, 5'000'000);
    start(kSecond, 5'000'001);
    EXPECT_FALSE(claimAs(kSecond));
    EXPECT_FALSE(fakemac::openAgain());

    (void)claimAs(kFirst);
    fakemac::finishLaunching();

    EXPECT_FALSE(fakemac::openAgain());
}

TEST_F(MacSingleInstanceTest, AHandlerMayDestroyTheClaim) {
    start(kFirst, 5'000'000);
    fakemac::mac().ownPid = kFirst;
    SubscriptionPtr claim;
    claim = desktop->singleInstance.claim([&] { claim.reset(); }, [] {});

    EXPECT_TRUE(fakemac::openAgain());

    EXPECT_FALSE(claim);
}

TEST_F(MacSingleInstanceTest, NoExceptionLeavesTheEventHandler) {
    start(kFirst, 5'000'000);
    fakemac::mac().ownPid = kFirst;
    const auto claim = desktop->singleInstance.claim([] { throw std::runtime_error("of a test"); }, [] {});

    EXPECT_NO_THROW(fakemac::openAgain());
}

} // namespace
} // namespace tessarel::macos
