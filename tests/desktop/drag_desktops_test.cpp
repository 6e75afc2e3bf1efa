// SPDX-License-Identifier: MIT

#include "desktop/desktop.h"
#include "desktop/expected.h"
#include "desktop/window_drag.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace tessarel::x11test {
namespace {

/// Drags on unusual desktops.
class DragDesktopTest : public testing::Test {
protected:
    void dragInto(Desktop& desktop, xcb_window_t window, const Frame& zone, const Frame& area,
                  bool isTranslucent = false) {
        WindowDrag drag{desktop};
        ASSERT_TRUE(drag.begin(window));
        drag.hold(XCB_MOD_MASK_SHIFT);
        drag.moveInto(zone);
        ASSERT_TRUE(drag.waitForOverlay(area)) << area;
        EXPECT_EQ(drag.isOverlayTranslucent(), isTranslucent);
        drag.release();
        EXPECT_TRUE(drag.waitUntilNoOverlay());
        EXPECT_EQ(desktop.settledFrame(window, zone), zone);
    }

    void expectDragsUnderCompositor(WindowManagerKind manager) {
        Desktop desktop{{.manager = manager, .settings = kNoHomes, .compositing = Compositing::On}};
        ASSERT_TRUE(desktop.startForDrags());
        TestClient client{desktop.server()};
        const Frame area = desktop.usableArea();
        const xcb_window_t window = desktop.open(client);

        for (const std::size_t zone : {1U, 3U})
            dragInto(desktop, window, frameIn(area, kZones.at(zone)), area, true);
        EXPECT_TRUE(desktop.stop());
    }
};

TEST_F(DragDesktopTest, TheOverlayIsTranslucentUnderTheCompositorOfXfwm4) {
    expectDragsUnderCompositor(WindowManagerKind::Xfwm4);
}

TEST_F(DragDesktopTest, TheOverlayIsTranslucentUnderTheCompositorOfKwin) {
    expectDragsUnderCompositor(WindowManagerKind::Kwin);
}

TEST_F(DragDesktopTest, ACompositorCanBeStartedAndStoppedBetweenDrags) {
    Desktop desktop{{.settings = kNoHomes}};
    ASSERT_TRUE(desktop.startForDrags());
    TestClient client{desktop.server()};
    const Frame area = desktop.usableArea();
    const xcb_window_t window = desktop.open(client);
    const auto isComposed = [&] {
        return desktop.observer().selectionOwner("_NET_WM_CM_S0") != XCB_WINDOW_NONE;
    };

    dragInto(desktop, window, frameIn(area, kZones[0]), area, false);
    {
        const ChildProcess picom({"picom", "--backend", "xrender", "--config", "/dev/null"},
                                 desktop.server().environment());
        ASSERT_TRUE(desktop.observer().waitUntil(isComposed));
        dragInto(desktop, window, frameIn(area, kZones[1]), area, true);
    }
    ASSERT_TRUE(desktop.observer().waitUntil([&] { return !isComposed(); }));
    dragInto(desktop, window, frameIn(area, kZones[2]), area, false);
    EXPECT_TRUE(desktop.stop());
}

/// The second display is to the right of the primary one, to its left, above it or below it.
class DragDisplaysTest : public DragDesktopTest,
                         public testing::WithParamInterface<std::pair<const char*, std::vector<Monitor>>> {};

TEST_P(DragDisplaysTest, AWindowCanBeDraggedIntoTheZonesOfEitherDisplay) {
    const std::vector<Monitor>& monitors = GetParam().second;
    XServerOptions server{.width = 0, .height = 0, .monitors = monitors};
    for (const Monitor& monitor : monitors) {
        server.width = std::max(server.width, monitor.x + monitor.width);
        server.height = std::max(server.height, monitor.y + monitor.height);
    }
    Desktop desktop{{.server = server, .settings = kNoHomes}};
    ASSERT_TRUE(desktop.startForDrags());
    TestClient client{desktop.server()};
    const xcb_window_t window =
        desktop.open(client, {.client = {monitors[0].x + 200, monitors[0].y + 150, 500, 300}});

    constexpr std::array kRounds =
        std::to_array<std::pair<std::size_t, Share>>({{1, kZones[0]}, {0, kZones[4]}, {1, kZones[4]}});
    for (const auto& [display, zone] : kRounds) {
        SCOPED_TRACE(display);
        const Frame area = desktop.usableArea(display);
        dragInto(desktop, window, frameIn(area, zone), area);
    }
    EXPECT_TRUE(desktop.stop());
}

Monitor display(const std::string& name, int x, int y, int width, int height) {
    return {.name = name, .x = x, .y = y, .width = width, .height = height, .primary = name == "P"};
}

// The panel is at the bottom of the whole desktop, the only edge along which it reserves space.
INSTANTIATE_TEST_SUITE_P(
    , DragDisplaysTest,
    testing::Values(
        std::pair("Right", std::vector{display("P", 0, 0, 1440, 900), display("S", 1440, 0, 1120, 1024)}),
        std::pair("Left", std::vector{display("P", 1120, 0, 1440, 900), display("S", 0, 0, 1120, 1024)}),
        std::pair("Above", std::vector{display("P", 160, 1000, 1280, 900), display("S", 0, 0, 1120, 1000)}),
        std::pair("Below", std::vector{display("P", 0, 0, 1120, 1000), display("S", 160, 1000, 1280, 900)})),
    [](const auto& placed) { return std::string(placed.param.first); });

} // namespace
} // namespace tessarel::x11test
