// SPDX-License-Identifier: MIT

#include "desktop/desktop.h"
#include "support/x11/child_process.h"

#include <gtest/gtest.h>

#include <csignal>

namespace tessarel::x11test {
namespace {

/// A window manager that is stopped while the program places a window.
class StoppedManagerTest : public testing::Test {
protected:
    StoppedManagerTest() { EXPECT_TRUE(desktop.startForCommands()); }

    /// Returns true if the program carries out a command of the command line.
    [[nodiscard]] bool isResponsive() {
        ChildProcess process({TESSAREL_LAUNCHER, "list", "displays"}, desktop.server().environment());
        return process.waitForExit() == 0;
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
    desktop.press(hotkey::kRightHalf);
    EXPECT_TRUE(isResponsive());
    EXPECT_EQ(desktop.frame(window), before) << "the window manager was not stopped";
    desktop.managerProcess().signal(SIGCONT);

    EXPECT_EQ(desktop.settledFrame(window, pulledBack), pulledBack);
}

} // namespace
} // namespace tessarel::x11test
