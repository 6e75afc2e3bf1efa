// SPDX-License-Identifier: MIT

#include "platform/x11/x11_fixture.h"
#include "support/x11/child_process.h"

#include <gtest/gtest.h>

#include <memory>

namespace tessarel::x11 {
namespace {

/// A desktop of i3, which announces _NET_MOVERESIZE_WINDOW but takes its position for that of the client, and
/// does not publish the extents of its frames.
SharedDesktop& desktopOfI3() {
    static SharedDesktop desktop;
    if (!desktop.manager)
        desktop.manager =
            std::make_unique<x11test::WindowManager>(desktop.server, x11test::WindowManagerKind::I3);
    return desktop;
}

class FloatingPlacementTest : public X11Test {
protected:
    FloatingPlacementTest() : X11Test(desktopOfI3()) {}

    /// Opens a window that floats.
    [[nodiscard]] xcb_window_t openFloating() {
        const xcb_window_t window = open();
        x11test::ChildProcess command({"i3-msg", "floating", "enable"}, desktop.server.environment());
        EXPECT_EQ(command.waitForExit(), 0);
        settle();
        return window;
    }
};

TEST_F(FloatingPlacementTest, AFloatingWindowGetsTheExactFrameAndGoesBack) {
    const xcb_window_t window = openFloating();
    const Rect before = actualFrame(window);

    for (const Rect& axFrame : {kTarget, Rect{0, 0, 800, 450}, before}) {
        writeFrame(elementOf(window), axFrame);
        EXPECT_EQ(readFrame(elementOf(window)), axFrame);
        EXPECT_EQ(actualFrame(window), axFrame);
    }
}

TEST_F(FloatingPlacementTest, ADockThatIsNotListedReservesSpace) {
    const xcb_window_t dock = client.open({.client = {0, 860, 1600, 40},
                                           .type = "_NET_WM_WINDOW_TYPE_DOCK",
                                           .strut = {0, 0, 0, 40, 0, 0, 0, 0, 0, 0, 0, 1599}});
    observer.watch(dock);
    ASSERT_TRUE(observer.waitUntil([&] { return observer.topLevel(dock) != dock; }));
    ASSERT_FALSE(observer.managed(dock));
    settle();

    const auto screens = displays.screens();

    ASSERT_EQ(screens.size(), 1U);
    EXPECT_EQ(screens.front().visibleFrame.height, 860);
}

} // namespace
} // namespace tessarel::x11
