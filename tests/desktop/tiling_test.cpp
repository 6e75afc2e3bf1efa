// SPDX-License-Identifier: MIT

#include "desktop/desktop.h"
#include "desktop/expected.h"

#include <gtest/gtest.h>

namespace tessarel::x11test {
namespace {

/// A window manager that announces _NET_MOVERESIZE_WINDOW and ignores it, keeps windows in tiles unless they
/// float, and lets programs move those that do.
class TilingTest : public testing::Test {
protected:
    TilingTest() { EXPECT_TRUE(desktop.start()); }
    ~TilingTest() override { EXPECT_TRUE(desktop.stop()); }

    void letWindowsFloat() {
        ChildProcess command({"herbstclient", "set_attr", "tags.focus.floating", "true"},
                             desktop.server().environment());
        ASSERT_EQ(command.waitForExit(), 0);
        ASSERT_TRUE(desktop.observer().settle());
    }

    /// Returns a window of the program under test, or XCB_WINDOW_NONE.
    xcb_window_t messageWindow() { return desktop.observer().windowOfClass("Tessarel"); }

    Desktop desktop{{.manager = WindowManagerKind::Herbstluftwm}};
    TestClient client{desktop.server()};
};

TEST_F(TilingTest, AFloatingWindowGoesToItsZone) {
    letWindowsFloat();
    const xcb_window_t window = desktop.open(client);

    for (const int number : {1, 5, 2}) {
        const Frame zone = frameIn(desktop.usableArea(), kZones.at(static_cast<std::size_t>(number - 1)));
        desktop.press(hotkey::zone(number));
        EXPECT_EQ(desktop.settledFrame(window, zone), zone) << number;
    }
    EXPECT_EQ(messageWindow(), xcb_window_t{XCB_WINDOW_NONE});
}

TEST_F(TilingTest, ATiledWindowStaysAndTheUserIsToldOnce) {
    const xcb_window_t window = desktop.open(client, {.className = "Tiled"});
    const Frame before = desktop.frame(window);

    desktop.press(hotkey::zone(2));

    ASSERT_TRUE(desktop.observer().waitUntil([&] { return messageWindow() != XCB_WINDOW_NONE; }));
    ASSERT_TRUE(desktop.activate(messageWindow()));
    desktop.press({key::kReturn, 0});
    ASSERT_TRUE(desktop.observer().waitUntil([&] { return messageWindow() == XCB_WINDOW_NONE; }));
    ASSERT_TRUE(desktop.activate(window));
    desktop.press(hotkey::zone(3));
    EXPECT_TRUE(desktop.waitUntilProgramRests());
    EXPECT_EQ(messageWindow(), xcb_window_t{XCB_WINDOW_NONE});
    EXPECT_EQ(desktop.frame(window), before);
    EXPECT_EQ(storedSettings(desktop.server()).find("Tiled"), std::string::npos) << "remembered";
}

} // namespace
} // namespace tessarel::x11test
