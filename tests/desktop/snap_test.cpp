// SPDX-License-Identifier: MIT

#include "desktop/snap_fixture.h"

#include <chrono>

namespace tessarel::x11test {
namespace {

/// A plain window under each window manager.
class SnapTest : public SnapFixture {
protected:
    const xcb_window_t window = desktop.open(client);
};

TEST_P(SnapTest, RestoreAfterAChainOfSnapsGoesBackToBeforeTheFirst) {
    const Frame before = desktop.frame(window);
    snap(window, 1);
    snap(window, 2);
    snap(window, 4);

    desktop.press(hotkey::kRestore);

    EXPECT_EQ(desktop.settledFrame(window, before), before);
}

/// A program that makes its window higher once it has seen the new size.
class CorrectedSnapTest : public SnapFixture {
protected:
    /// Snaps the window and lets the program correct it. Returns false if that took so long on a busy machine
    /// that the change may not count as a correction any more.
    [[nodiscard]] bool snapAndCorrect(xcb_window_t window, int number) {
        constexpr std::chrono::milliseconds kInTime{400};
        const auto begin = std::chrono::steady_clock::now();
        snap(window, number);
        Frame corrected = zoneFrame(number);
        corrected.height += 12;
        const auto inner = desktop.observer().clientFrame(window);
        client.moveBack(window, {corrected.x, corrected.y, inner->width, inner->height + 12});
        const bool isInTime = std::chrono::steady_clock::now() - begin < kInTime;
        EXPECT_TRUE(desktop.observer().waitUntil([&] {
            const Frame frame = desktop.frame(window);
            return frame.width == corrected.width && frame.height == corrected.height;
        })) << desktop.frame(window)
            << " instead of " << corrected;
        EXPECT_TRUE(desktop.waitUntilProgramRests());
        return isInTime;
    }
};

TEST_P(CorrectedSnapTest, RestoreGoesBackToBeforeTheFirstOfSeveralCorrectedSnaps) {
    Frame before;
    xcb_window_t window = XCB_WINDOW_NONE;
    bool isInTime = false;
    for (const Deadline deadline; !isInTime && !deadline.passed() && !HasFailure();) {
        window = desktop.open(client);
        before = desktop.frame(window);
        isInTime = snapAndCorrect(window, 4) && snapAndCorrect(window, 2);
    }
    ASSERT_TRUE(isInTime) << "the machine is too busy";

    desktop.press(hotkey::kRestore);

    EXPECT_EQ(desktop.settledFrame(window, before), before);
}

TEST_P(SnapTest, RestoreAfterAMoveByHandGoesBackToTheHandMovedFrame) {
    const Frame byHand{300, 200, 620, 410};
    snap(window, 1);
    expectNextPressWorks();
    ASSERT_TRUE(desktop.activate(window));
    desktop.observer().moveOuterFrame(window, byHand);
    ASSERT_EQ(desktop.settledFrame(window, byHand), byHand);
    snap(window, 2);

    desktop.press(hotkey::kRestore);

    EXPECT_EQ(desktop.settledFrame(window, byHand), byHand);
}

TEST_P(SnapTest, ASecondRestoreMovesNothing) {
    const Frame before = desktop.frame(window);
    snap(window, 3);
    desktop.press(hotkey::kRestore);
    ASSERT_EQ(desktop.settledFrame(window, before), before);

    desktop.press(hotkey::kRestore);

    expectNextPressWorks();
    EXPECT_EQ(desktop.frame(window), before);
}

TEST_P(SnapTest, APressIsOneVisibleStep) {
    const ConfigureCount before = client.configures(window);
    snap(window, 5);
    snap(window, 1); // by the time this press takes effect, all effects of the first one have been seen

    const ConfigureCount after = client.configures(window);
    EXPECT_EQ(after.real - before.real, 2);
    EXPECT_LE(after.all() - before.all(), 4);
}

TEST_P(SnapTest, ASnapIntoTheCurrentZoneCausesNoVisibleStep) {
    snap(window, 5);
    const ConfigureCount before = client.configures(window);
    snap(window, 5);
    snap(window, 1);

    EXPECT_EQ(client.configures(window).real - before.real, 1);
}

TEST_P(SnapTest, OnlyTheActiveWindowMoves) {
    const Frame first = desktop.frame(window);
    const xcb_window_t second = desktop.open(client, {.client = {400, 300, 450, 350}});

    snap(second, 1);

    EXPECT_EQ(desktop.frame(window), first);
}

TEST_P(SnapTest, ATerminalFillsItsZoneToWithinOneResizeIncrement) {
    ChildProcess terminal({"xterm", "-geometry", "80x24+200+150", "-class", "Terminal", "-e", "cat"},
                          desktop.server().environment());
    Observer& observer = desktop.observer();
    xcb_window_t xterm = XCB_WINDOW_NONE;
    ASSERT_TRUE(observer.waitUntil([&] {
        xterm = observer.windowOfClass("Terminal");
        return xterm != XCB_WINDOW_NONE;
    }));
    ASSERT_TRUE(desktop.activate(xterm));
    const std::vector<std::uint32_t> hints = observer.values(xterm, "WM_NORMAL_HINTS");
    const Frame zone = zoneFrame(5);
    const auto fits = [&] {
        const Frame frame = desktop.frame(xterm);
        return frame.x == zone.x && frame.y == zone.y && frame.width <= zone.width &&
               frame.height <= zone.height && frame.width > zone.width - static_cast<int>(hints.at(9)) &&
               frame.height > zone.height - static_cast<int>(hints.at(10));
    };

    desktop.press(hotkey::zone(5));

    EXPECT_TRUE(observer.waitUntil(fits)) << desktop.frame(xterm) << " in " << zone;
}

INSTANTIATE_TEST_SUITE_P(Every, CorrectedSnapTest, testing::ValuesIn(kAllWindowManagers), managerName);
INSTANTIATE_TEST_SUITE_P(Every, SnapTest, testing::ValuesIn(kAllWindowManagers), managerName);

} // namespace
} // namespace tessarel::x11test
