// SPDX-License-Identifier: MIT

#include "platform/x11/windows/window_at_point.h"

#include "platform/x11/x11_fixture.h"

#include <gtest/gtest.h>

#include <string>

namespace tessarel::x11 {
namespace {

using x11test::WindowOptions;

class WindowAtPointTest : public X11Test {
protected:
    [[nodiscard]] std::optional<xcb_window_t> at(const Point& rootPoint) {
        return windowAtPoint(connection, windows, rootPoint);
    }
    /// Opens a window and moves its visible frame to `frame`.
    [[nodiscard]] xcb_window_t openAt(const x11test::Frame& frame) {
        const xcb_window_t window = open();
        observer.moveOuterFrame(window, frame);
        EXPECT_TRUE(observer.waitUntil([&] { return observer.outerFrame(window) == frame; }));
        settle();
        return window;
    }
};

TEST_F(WindowAtPointTest, TheTitleBarBelongsToTheWindow) {
    const xcb_window_t window = openAt({200, 150, 640, 480});
    ASSERT_GT(observer.clientFrame(window)->y, 152) << "the window has no title bar";

    EXPECT_EQ(at({500, 151}), window);
}

TEST_F(WindowAtPointTest, AMenuOnTopHidesTheWindowBelow) {
    const xcb_window_t window = openAt({200, 150, 640, 480});
    const xcb_window_t menu = client.open({.client = {300, 100, 200, 300}, .overrideRedirect = true});
    ASSERT_TRUE(observer.waitUntil([&] {
        return at({350, 110}) == std::nullopt && at({350, 160}) != window;
    }));

    EXPECT_EQ(at({350, 160}), std::nullopt);
    EXPECT_EQ(at({600, 160}), window);
    client.destroy(menu);
    settle();
    EXPECT_EQ(at({350, 160}), window);
}

TEST_F(WindowAtPointTest, AShadowAroundAClientIsNotTheWindow) {
    const xcb_window_t window =
        open({.client = {300, 200, 600, 400}, .shadow = {{20, 20, 20, 20}}, .decorated = false});
    const auto clientFrame = observer.clientFrame(window);
    ASSERT_TRUE(clientFrame);
    const auto left = static_cast<double>(clientFrame->x);
    const auto top = static_cast<double>(clientFrame->y);

    EXPECT_EQ(at({left + 10, top + 200}), std::nullopt);
    EXPECT_EQ(at({left + 20, top + 20}), window);
}

TEST_F(WindowAtPointTest, AWindowOnAnotherDesktopIsNotFound) {
    const xcb_window_t window = openAt({200, 150, 640, 480});
    const auto desktops = observer.values(observer.root(), "_NET_NUMBER_OF_DESKTOPS");
    ASSERT_FALSE(desktops.empty());
    ASSERT_GE(desktops.front(), 2U);
    observer.sendToRoot(observer.root(), "_NET_CURRENT_DESKTOP", {1, 0, 0, 0, 0});
    const auto isOn = [&](std::uint32_t number) {
        return observer.values(observer.root(), "_NET_CURRENT_DESKTOP") == std::vector{number};
    };
    ASSERT_TRUE(observer.waitUntil([&] { return isOn(1); }));
    settle();

    EXPECT_EQ(at({500, 300}), std::nullopt);

    observer.sendToRoot(observer.root(), "_NET_CURRENT_DESKTOP", {0, 0, 0, 0, 0});
    ASSERT_TRUE(observer.waitUntil([&] { return isOn(0); }));
    settle();
    EXPECT_EQ(at({500, 300}), window);
}

TEST_F(WindowAtPointTest, ManyWindowsCostNoMoreRoundTrips) {
    const xcb_window_t bottom = openAt({200, 150, 640, 480});
    (void)at({500, 151});
    settle();
    const auto before = connection.roundTrips();
    (void)at({500, 151});
    const auto cost = connection.roundTrips() - before;

    for (int n = 0; n < 5; ++n)
        (void)open({.client = {900 + 10 * n, 300, 300, 200}});
    settle();
    const auto start = connection.roundTrips();

    EXPECT_EQ(at({500, 151}), bottom);
    EXPECT_LE(connection.roundTrips() - start, cost);
}

TEST_F(WindowAtPointTest, WithoutAServerNothingIsFound) {
    x11test::XServer server;
    ConnectionDriver lost(server.display());
    ClientWindows none(lost.connection());
    server.kill();

    EXPECT_EQ(windowAtPoint(lost.connection(), none, {10, 10}), std::nullopt);
}

} // namespace
} // namespace tessarel::x11
