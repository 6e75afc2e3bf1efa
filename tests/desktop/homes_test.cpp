// SPDX-License-Identifier: MIT

#include "desktop/homes_fixture.h"

#include <chrono>
#include <map>

namespace tessarel::x11test {
namespace {

using namespace std::chrono_literals;

class HomesTest : public HomesFixture {};

TEST_P(HomesTest, AProgramOpensInItsZoneEveryTimeItIsStarted) {
    giveHome(3);

    for (int time = 0; time < 2; ++time) {
        TestClient again{desktop.server()};
        expectInZone(open(again, own()), 3);
    }
}

TEST_P(HomesTest, RestoreTakesAWindowBackToWhereItOpened) {
    giveHome(3);
    const auto [window, opened] = desktop.openUnseen(client, own());
    expectInZone(window, 3);

    desktop.press(hotkey::kRestore);

    EXPECT_EQ(desktop.settledFrame(window, opened), opened);
}

TEST_P(HomesTest, TheNextWindowOfARunningProgramOpensInItsZone) {
    const xcb_window_t first = desktop.open(client, own());
    snap(first, 4);
    client.destroy(first);

    expectInZone(open(client, own()), 4);
}

TEST_P(HomesTest, WindowsThatOpenTogetherAreAllPlaced) {
    giveHome(2);

    const xcb_window_t first = client.open(own());
    const xcb_window_t second = client.open(own());

    expectInZone(first, 2);
    expectInZone(second, 2);
}

TEST_P(HomesTest, WindowsOfEveryProcessOfAProgramArePlaced) {
    giveHome(5);
    TestClient another{desktop.server()};

    const xcb_window_t first = open(client, own());
    const xcb_window_t second = open(another, own());

    expectInZone(first, 5);
    expectInZone(second, 5);
}

TEST_P(HomesTest, AWindowStaysWhereTheUserMovesItAfterwards) {
    constexpr Frame kByHand{300, 200, 620, 410};
    giveHome(3);
    const xcb_window_t window = desktop.open(client, own());
    expectInZone(window, 3);

    desktop.observer().moveOuterFrame(window, kByHand);
    ASSERT_EQ(desktop.settledFrame(window, kByHand), kByHand);
    waitForTurnOfAllBefore(3);

    EXPECT_EQ(desktop.frame(window), kByHand);
}

TEST_P(HomesTest, DialogsAndOtherSecondaryWindowsStayWhereTheyOpen) {
    giveHome(2);
    const xcb_window_t main = desktop.open(client, own());
    expectInZone(main, 2);
    std::map<std::string, WindowOptions> others;
    for (const char* const type : {"DIALOG", "UTILITY", "SPLASH", "TOOLBAR"})
        others.emplace(type, own()).first->second.type = std::string("_NET_WM_WINDOW_TYPE_") + type;
    others.emplace("transient", own()).first->second.transientFor = main;
    std::map<std::string, xcb_window_t> windows;
    std::map<std::string, Frame> opened;
    {
        const Program::Hold hold = desktop.program().hold(); // so that it cannot move any yet
        for (const auto& [kind, options] : others) {
            windows[kind] = open(client, options);
            opened[kind] = desktop.frame(windows[kind]);
        }
    }

    waitForTurnOfAllBefore(2);

    for (const auto& [kind, window] : windows)
        EXPECT_EQ(desktop.frame(window), opened[kind]) << kind;
}

TEST_P(HomesTest, AWindowThatFollowsASplashScreenIsPlaced) {
    giveHome(4);
    WindowOptions splash = own();
    splash.type = "_NET_WM_WINDOW_TYPE_SPLASH";
    const xcb_window_t greeting = open(client, splash);
    const xcb_window_t main = open(client, own());
    expectInZone(main, 4);
    client.destroy(greeting);

    // By now the application no longer counts as launching.
    expectInZone(open(client, own()), 4);
}

TEST_P(HomesTest, AWindowThatOpensMinimisedIsNotPlaced) {
    giveHome(2);
    expectInZone(open(client, own()), 2);
    WindowOptions options = own();
    options.iconic = true;
    const xcb_window_t minimised = open(client, options);
    waitForTurnOfAllBefore(2);

    ASSERT_TRUE(desktop.activate(minimised));

    EXPECT_NE(desktop.frame(minimised), zoneFrame(2));
}

TEST_P(HomesTest, AWindowDestroyedBeforeItIsPlacedDoesNoHarm) {
    giveHome(3);
    expectInZone(open(client, own()), 3);
    TestClient shortLived{desktop.server()};
    (void)open(shortLived, own());
    client.destroy(open(client, own()));
    shortLived.process().kill();

    waitForTurnOfAllBefore(3);

    EXPECT_TRUE(desktop.program().running());
}

/// A program that moves its own window back to an earlier frame some time after the window has opened.
class RestoringProgramTest : public HomesFixture {
protected:
    /// Opens a window that moves itself back after `delay`, and expects it to end in `zone`. Returns false,
    /// without expecting anything, if the client was delayed so long that it moved only after it had been
    /// placed.
    [[nodiscard]] bool comesBackInTime(TestClient& owner, std::chrono::milliseconds delay, int zone) {
        WindowOptions options = own();
        options.comesBackAfter = delay;
        const xcb_window_t window = open(owner, options);
        EXPECT_TRUE(desktop.observer().waitUntil([&] { return owner.comeBack(window) != ComeBack::NotYet; }));
        const bool isInTime = owner.comeBack(window) == ComeBack::First;
        if (isInTime)
            expectInZone(window, zone);
        owner.destroy(window);
        return isInTime;
    }

    /// Retries `attempt` until it succeeds.
    template <class Attempt>
    [[nodiscard]] static bool comesOff(Attempt attempt) {
        constexpr int kAttempts = 5;
        for (int number = 0; number < kAttempts; ++number)
            if (attempt())
                return true;
        return false;
    }
};

TEST_P(RestoringProgramTest, AProgramThatRestoresItsWindowInTimeEndsInItsZone) {
    giveHome(3);
    // A program that has just started is given more time.
    EXPECT_TRUE(comesOff([this] {
        TestClient started{desktop.server()};
        return comesBackInTime(started, 800ms, 3);
    }));

    expectInZone(open(client, own()), 3);
    EXPECT_TRUE(comesOff([this] { return comesBackInTime(client, 0ms, 3); }));
}

TEST_P(RestoringProgramTest, AProgramThatMovesItsWindowLateWins) {
    giveHome(3);
    expectInZone(open(client, own()), 3);
    const auto [late, opened] = desktop.openUnseen(client, own());
    expectInZone(late, 3);

    client.moveBack(late, own().client);

    EXPECT_EQ(desktop.settledFrame(late, opened), opened);
}

INSTANTIATE_TEST_SUITE_P(Some, HomesTest, testing::ValuesIn(kManagersForHomes), managerName);
INSTANTIATE_TEST_SUITE_P(Some, RestoringProgramTest, testing::ValuesIn(kManagersForHomes), managerName);

} // namespace
} // namespace tessarel::x11test
