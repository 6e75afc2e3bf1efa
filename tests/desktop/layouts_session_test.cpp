// SPDX-License-Identifier: MIT

#include "desktop/desktop.h"
#include "desktop/expected.h"
#include "support/x11/mouse.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace tessarel::x11test {
namespace {

/// One zone, from 10 to 50 percent in both directions.
constexpr std::string_view kOneZone = R"({"hasOnboarded":true,"rememberApps":false,"gridStep":5,)"
                                      R"("zones":[{"enabled":true,"x":10,"y":10,"w":40,"h":40}]})";
constexpr Combination kOwnKey{key::kC, kControlAltSuper};

/// Designs a layout in the settings window with mouse and keyboard. Coordinates are relative to the Layouts
/// tab.
class LayoutsSessionTest : public testing::Test {
protected:
    xcb_window_t windowTitled(const std::string& title) {
        Observer& observer = desktop.observer();
        const auto clients = observer.clients();
        const auto found = std::ranges::find_if(
            clients, [&](xcb_window_t window) { return observer.text(window, "_NET_WM_NAME") == title; });
        return found == clients.end() ? xcb_window_t{XCB_WINDOW_NONE} : *found;
    }

    /// Waits until the window with this title is active, and stays active once its program is idle.
    bool waitForActive(const std::string& title) {
        xcb_window_t window = XCB_WINDOW_NONE;
        const auto isActive = [&] {
            window = windowTitled(title);
            return window != XCB_WINDOW_NONE && desktop.observer().activeWindow() == window;
        };
        return desktop.observer().waitUntil(isActive) && desktop.observer().settleProgram(window);
    }

    /// Starts a second instance, which opens the settings window of the first.
    void openSettings() {
        ASSERT_NE(openSettingsWindow(desktop.observer(), desktop.server().environment()),
                  xcb_window_t{XCB_WINDOW_NONE});
    }

    void moveTo(int x, int y) {
        constexpr int kTabX = 20; // position of the tab in its window
        constexpr int kTabY = 40;
        const Frame window = *desktop.observer().clientFrame(windowTitled("Tessarel Settings"));
        mouse.moveTo(window.x + kTabX + x, window.y + kTabY + y);
    }
    void click(int x, int y) {
        moveTo(x, y);
        mouse.press();
        mouse.release();
    }
    void dragInEditor(int fromX, int fromY, int toX, int toY) {
        constexpr int kEditorX = 16;
        constexpr int kEditorY = 56;
        moveTo(kEditorX + fromX, kEditorY + fromY);
        mouse.press();
        moveTo(kEditorX + (fromX + toX) / 2, kEditorY + (fromY + toY) / 2);
        moveTo(kEditorX + toX, kEditorY + toY);
        mouse.release();
    }

    bool waitUntilStored(const std::string& text) {
        return x11test::waitUntilStored(desktop.observer(), desktop.server(), text);
    }
    std::string stored() { return storedSettings(desktop.server()); }

    void saveLayoutAs(const std::vector<xcb_keycode_t>& keys) {
        click(375, 25);
        ASSERT_TRUE(waitForActive("Tessarel")) << "no dialog asks for a name";
        for (const xcb_keycode_t letter : keys)
            desktop.press({letter, 0});
        desktop.press({key::kReturn, 0});
    }

    Desktop desktop{{.settings = kOneZone}};
    TestClient client{desktop.server()};
    Mouse mouse{desktop.observer()};
};

TEST_F(LayoutsSessionTest, ALayoutCanBeDesignedSavedBoundUsedAndDeleted) {
    ASSERT_TRUE(desktop.start());
    const xcb_window_t window = desktop.open(client);
    const Frame designed = frameIn(desktop.usableArea(), {10, 10, 50, 55});
    openSettings();

    dragInEditor(250, 156, 300, 203); // the lower right corner, to 60 and 65 percent
    ASSERT_TRUE(waitUntilStored(R"("h":55)")) << stored();
    saveLayoutAs({key::kC, key::kA, key::kC});
    ASSERT_TRUE(waitUntilStored(R"("name":"cac")")) << stored();
    ASSERT_TRUE(waitForActive("Tessarel Settings")); // the dialog no longer covers the row
    click(615, 281);                                 // the recorder of the zone
    ASSERT_TRUE(desktop.observer().waitUntil([&] { return !desktop.keyboard().isFree(); }));
    desktop.press(kOwnKey);
    ASSERT_TRUE(waitUntilStored(R"("zone1":{"keyCode":8,)")) << stored();
    ASSERT_TRUE(desktop.observer().waitUntil([&] { return desktop.keyboard().held(kOwnKey); }));
    // The recorder keeps the keyboard grab until the recorded key is released.
    ASSERT_TRUE(desktop.observer().waitUntil([&] { return desktop.keyboard().isFree(); }));

    EXPECT_TRUE(desktop.activate(window));
    desktop.press(kOwnKey);
    EXPECT_EQ(desktop.settledFrame(window, designed), designed);

    ASSERT_TRUE(desktop.stop());
    desktop.observer().moveOuterFrame(window, {300, 200, 500, 300});
    ASSERT_TRUE(desktop.start());
    ASSERT_TRUE(desktop.activate(window));
    desktop.press(kOwnKey);
    EXPECT_EQ(desktop.settledFrame(window, designed), designed);
    openSettings();
    click(461, 25); // deletes the layout in use
    EXPECT_TRUE(waitUntilStored(R"("userLayouts":[])")) << stored();
    EXPECT_TRUE(desktop.stop());
}

} // namespace
} // namespace tessarel::x11test
