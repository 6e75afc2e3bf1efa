// SPDX-License-Identifier: MIT

#include "platform/x11/windows/bring_to_user.h"

#include "platform/x11/server/server_time.h"
#include "platform/x11/x11_fixture.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace tessarel::x11 {
namespace {

class BringToUserTest : public X11Test {
protected:
    static constexpr std::uint32_t kAllDesktops = 0xFFFFFFFF;

    [[nodiscard]] bool waitUntilOn(xcb_window_t window, std::uint32_t desktop) {
        return observer.waitUntil(
            [&] { return observer.values(window, "_NET_WM_DESKTOP") == std::vector{desktop}; });
    }
    [[nodiscard]] bool waitUntilActive(xcb_window_t window) {
        return observer.waitUntil([&] { return observer.activeWindow() == window; });
    }
    [[nodiscard]] bool waitUntilInFront(xcb_window_t window) {
        return observer.waitUntil([&] {
            const auto stacked = observer.values(observer.root(), "_NET_CLIENT_LIST_STACKING");
            return !stacked.empty() && stacked.back() == window;
        });
    }
};

TEST_F(BringToUserTest, AWindowBehindAnotherComesToFrontAndGetsTheFocus) {
    const xcb_window_t window = open({.client = {200, 200, 300, 300}});
    const xcb_window_t other = open({.client = {100, 100, 600, 600}});
    ASSERT_TRUE(waitUntilActive(other));

    bringToUser(connection, window);

    EXPECT_TRUE(waitUntilActive(window));
    EXPECT_TRUE(waitUntilInFront(window));
}

TEST_F(BringToUserTest, AWindowComesFromAnotherDesktop) {
    const xcb_window_t window = open();
    observer.sendToRoot(window, "_NET_WM_DESKTOP", {1, 2});
    ASSERT_TRUE(waitUntilOn(window, 1));

    bringToUser(connection, window);

    EXPECT_TRUE(waitUntilOn(window, 0));
    EXPECT_TRUE(waitUntilActive(window));
    EXPECT_EQ(observer.values(observer.root(), "_NET_CURRENT_DESKTOP"), std::vector<std::uint32_t>{0});
}

TEST_F(BringToUserTest, AWindowOnAllDesktopsStaysOnAll) {
    const xcb_window_t window = open();
    observer.sendToRoot(window, "_NET_WM_DESKTOP", {kAllDesktops, 2});
    ASSERT_TRUE(waitUntilOn(window, kAllDesktops));
    const xcb_window_t other = open();
    ASSERT_TRUE(waitUntilActive(other));

    bringToUser(connection, window);

    EXPECT_TRUE(waitUntilActive(window));
    EXPECT_EQ(observer.values(window, "_NET_WM_DESKTOP"), std::vector{kAllDesktops});
}

TEST_F(BringToUserTest, AWindowThatComesAlongLeavesTheFocus) {
    const xcb_window_t window = open({.client = {200, 200, 300, 300}});
    observer.sendToRoot(window, "_NET_WM_DESKTOP", {1, 2});
    ASSERT_TRUE(waitUntilOn(window, 1));
    const xcb_window_t other = open({.client = {100, 100, 600, 600}});
    ASSERT_TRUE(waitUntilActive(other));

    bringAlong(connection, window);

    EXPECT_TRUE(waitUntilOn(window, 0));
    EXPECT_TRUE(waitUntilInFront(window));
    EXPECT_EQ(observer.activeWindow(), other);
}

TEST_F(BringToUserTest, TheTimeOfTheServerAdvances) {
    const xcb_timestamp_t first = serverTime(connection);
    EXPECT_NE(first, xcb_timestamp_t{XCB_CURRENT_TIME});
    ASSERT_TRUE(observer.waitUntil([&] { return serverTime(connection) != first; }));
    EXPECT_GT(serverTime(connection), first);
}

TEST_F(BringToUserTest, WithoutAServerNothingHappens) {
    x11test::XServer server;
    ConnectionDriver lost(server.display());
    server.kill();

    bringToUser(lost.connection(), 1);
    bringAlong(lost.connection(), 1);
    EXPECT_EQ(serverTime(lost.connection()), xcb_timestamp_t{XCB_CURRENT_TIME});
}

} // namespace
} // namespace tessarel::x11
