// SPDX-License-Identifier: MIT

#include "desktop/desktop.h"
#include "desktop/expected.h"

#include <gtest/gtest.h>

namespace tessarel::x11test {
namespace {

/// A program whose windows belong in the third zone.
class HomesSessionTest : public testing::Test {
protected:
    [[nodiscard]] Frame home() { return frameIn(desktop.usableArea(), kZones[2]); }

    void expectAtHome(xcb_window_t window) { EXPECT_EQ(desktop.settledFrame(window, home()), home()); }

    Desktop desktop{{.settings = R"({"hasOnboarded":true,"appZones":{"Editor":2}})"}};
    TestClient client{desktop.server()};
    const WindowOptions editor{.className = "Editor"};
};

TEST_F(HomesSessionTest, WindowsOpenedBeforeTheStartStayAndLaterOnesArePlaced) {
    const xcb_window_t first = desktop.open(client, editor);
    const Frame opened = desktop.frame(first);
    ASSERT_TRUE(desktop.start());

    expectAtHome(desktop.open(client, editor));

    EXPECT_EQ(desktop.frame(first), opened);
    EXPECT_TRUE(desktop.stop());
}

TEST_F(HomesSessionTest, ANewWindowManagerDoesNotCauseWindowsToBePlacedAgain) {
    constexpr Frame kByHand{300, 200, 620, 410};
    ASSERT_TRUE(desktop.start());
    const xcb_window_t first = desktop.open(client, editor);
    expectAtHome(first);
    desktop.observer().moveOuterFrame(first, kByHand);
    ASSERT_EQ(desktop.settledFrame(first, kByHand), kByHand);

    for (const WindowManagerKind next : {WindowManagerKind::Xfwm4, WindowManagerKind::Openbox}) {
        desktop.replaceManager(next);
        ASSERT_TRUE(desktop.activate(first)) << next;
        const Frame takenOver = desktop.frame(first);
        expectAtHome(desktop.open(client, editor));
        EXPECT_EQ(desktop.frame(first), takenOver) << next;
    }
    EXPECT_TRUE(desktop.stop());
}

TEST_F(HomesSessionTest, AWindowThatOpensOnAnotherDesktopIsPlacedThere) {
    Observer& observer = desktop.observer();
    WindowOptions elsewhere = editor;
    elsewhere.desktop = 1;
    ASSERT_TRUE(desktop.start());

    const xcb_window_t window = client.open(elsewhere);
    observer.watch(window);

    expectAtHome(window);
    EXPECT_EQ(observer.values(window, "_NET_WM_DESKTOP"), std::vector<std::uint32_t>{1});
    EXPECT_EQ(observer.values(observer.root(), "_NET_CURRENT_DESKTOP"), std::vector<std::uint32_t>{0});
    EXPECT_TRUE(desktop.stop());
}

} // namespace
} // namespace tessarel::x11test
