// SPDX-License-Identifier: MIT

#include "desktop/desktop.h"
#include "desktop/expected.h"
#include "support/x11/child_process.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>

namespace tessarel::x11test {
namespace {

/// A window manager that is stopped while the program places a window.
class StoppedManagerTest : public testing::Test {
protected:
    StoppedManagerTest() { EXPECT_TRUE(desktop.startForCommands()); }

    using Clock = std::chrono::steady_clock;

    /// Presses a hot key. Returns how long it takes until the program has carried out it and a command, for
    /// which the command line waits for at most five seconds.
    Clock::duration press(const Combination& keys) {
        const auto before = Clock::now();
        desktop.press(keys);
        ChildProcess command({TESSAREL_LAUNCHER, "list", "displays"}, desktop.server().environment());
        EXPECT_EQ(command.waitForExit(), 0) << "the program does not respond";
        return Clock::now() - before;
    }

    Desktop desktop{{.settings = kNoHomes}};
    TestClient client{desktop.server()};
};

TEST_F(StoppedManagerTest, AWindowTooLargeForItsZoneIsPulledBackWhenTheManagerGoesOn) {
    const xcb_window_t window = desktop.open(client, {.minimum = WindowOptions::Pair{1000, 300}});
    const Frame area = desktop.usableArea();
    const Frame before = desktop.frame(window);
    const int width = 1000 + before.width - desktop.observer().clientFrame(window)->width;
    const Frame pulledBack{area.right() - width, area.y, width, area.height};
    ASSERT_NE(before, pulledBack);

    desktop.managerProcess().signal(SIGSTOP);
    press(hotkey::kRightHalf);
    EXPECT_EQ(desktop.frame(window), before) << "the window manager was not stopped";
    desktop.managerProcess().signal(SIGCONT);

    EXPECT_EQ(desktop.settledFrame(window, pulledBack), pulledBack);
}

TEST_F(StoppedManagerTest, OnlyTheFirstKeyTakesLong) {
    const xcb_window_t window = desktop.open(client);
    desktop.managerProcess().signal(SIGSTOP);

    const Clock::duration first = press(hotkey::kRightHalf);
    Clock::duration fastest = first; // of several, because a busy machine may delay one
    for (const Combination& keys : {hotkey::kLeftHalf, hotkey::kRightHalf, hotkey::kLeftHalf})
        fastest = std::min(fastest, press(keys));

    EXPECT_LT(2 * fastest, first);
    desktop.managerProcess().signal(SIGCONT);
    const Frame leftHalf = frameIn(desktop.usableArea(), kLeftHalf);
    EXPECT_EQ(desktop.settledFrame(window, leftHalf), leftHalf);
}

} // namespace
} // namespace tessarel::x11test
