// SPDX-License-Identifier: MIT

#include "desktop/snap_fixture.h"

#include <array>

namespace tessarel::x11test {
namespace {

constexpr Combination kArrange{key::kA, kControlAlt};

/// Arranges several windows on one display with the hot key, under each window manager.
class ArrangeTest : public SnapFixture {
protected:
    xcb_window_t openAt(int x, int y) { return desktop.open(client, {.client = {x, y, 400, 250}}); }

    void expectInZone(xcb_window_t window, int number) {
        EXPECT_EQ(desktop.settledFrame(window, zoneFrame(number)), zoneFrame(number)) << "zone " << number;
    }

    /// Expects that arranging leaves `excluded` at `home` and moves the window in front of it to the first
    /// zone.
    void expectLeftAlone(xcb_window_t excluded, const Frame& home) {
        const xcb_window_t other = openAt(300, 250);

        desktop.press(kArrange);

        expectInZone(other, 1);
        // Some window managers animate minimising by moving the frame for a while.
        EXPECT_TRUE(desktop.observer().waitUntil([&] { return desktop.frame(excluded) == home; }));
    }
};

TEST_P(ArrangeTest, TheOnlyWindowTakesTheFirstZone) {
    const xcb_window_t window = openAt(200, 150);

    desktop.press(kArrange);

    expectInZone(window, 1);
}

TEST_P(ArrangeTest, WindowsBeyondTheZonesStayWhereTheyAre) {
    const xcb_window_t backmost = openAt(500, 400);
    const auto before = desktop.observer().clientFrame(backmost);
    std::array<xcb_window_t, kZones.size()> windows{};
    for (std::size_t i = 0; i < windows.size(); ++i)
        windows.at(i) = openAt(60 + 50 * static_cast<int>(i), 60 + 40 * static_cast<int>(i));

    desktop.press(kArrange);

    for (std::size_t i = 0; i < windows.size(); ++i)
        expectInZone(windows.at(windows.size() - 1 - i), static_cast<int>(i) + 1);
    EXPECT_EQ(desktop.observer().clientFrame(backmost), before);
}

TEST_P(ArrangeTest, RestoreMovesAWindowBackToItsOwnFrame) {
    const xcb_window_t back = openAt(100, 100);
    const xcb_window_t front = openAt(200, 200);
    const Frame home = desktop.frame(back);
    desktop.press(kArrange);
    expectInZone(front, 1);
    expectInZone(back, 2);

    ASSERT_TRUE(desktop.activate(back));
    desktop.press(hotkey::kRestore);

    EXPECT_EQ(desktop.settledFrame(back, home), home);
}

TEST_P(ArrangeTest, AMinimizedWindowIsLeftAlone) {
    const xcb_window_t minimized = openAt(100, 100);
    const Frame home = desktop.frame(minimized);
    desktop.observer().iconify(minimized);
    ASSERT_TRUE(desktop.observer().waitUntil(
        [&] { return desktop.observer().hasState(minimized, "_NET_WM_STATE_HIDDEN"); }));

    expectLeftAlone(minimized, home);

    EXPECT_TRUE(desktop.observer().hasState(minimized, "_NET_WM_STATE_HIDDEN"));
}

TEST_P(ArrangeTest, AFullyTransparentWindowIsLeftAlone) {
    const xcb_window_t transparent = openAt(100, 100);
    client.setCardinals(transparent, "_NET_WM_WINDOW_OPACITY", {0});

    expectLeftAlone(transparent, desktop.frame(transparent));
}

TEST_P(ArrangeTest, WindowsTakeTheZonesFrontToBack) {
    const xcb_window_t first = openAt(60, 60);
    const xcb_window_t second = openAt(120, 120);
    const xcb_window_t third = openAt(180, 180);
    ASSERT_TRUE(desktop.activate(first));

    desktop.press(kArrange);

    expectInZone(first, 1);
    expectInZone(third, 2);
    expectInZone(second, 3);
}

INSTANTIATE_TEST_SUITE_P(All, ArrangeTest, testing::ValuesIn(kAllWindowManagers), managerName);

/// The window managers that start with several virtual desktops.
class ArrangeDesktopsTest : public ArrangeTest {};

TEST_P(ArrangeDesktopsTest, AWindowOnAnotherDesktopIsLeftAlone) {
    const xcb_window_t elsewhere = openAt(100, 100);
    desktop.observer().sendToRoot(elsewhere, "_NET_WM_DESKTOP", {1, 2, 0, 0, 0});
    ASSERT_TRUE(desktop.observer().waitUntil([&] {
        return desktop.observer().values(elsewhere, "_NET_WM_DESKTOP") == std::vector<std::uint32_t>{1};
    }));

    expectLeftAlone(elsewhere, desktop.frame(elsewhere));
}

TEST_P(ArrangeDesktopsTest, OfTwoWindowsWithTheSameFrameTheOneOnThisDesktopIsArranged) {
    const xcb_window_t here = openAt(200, 150);
    const xcb_window_t elsewhere = openAt(200, 150); // in front
    desktop.observer().sendToRoot(elsewhere, "_NET_WM_DESKTOP", {1, 2, 0, 0, 0});
    ASSERT_TRUE(desktop.observer().waitUntil([&] {
        return desktop.observer().values(elsewhere, "_NET_WM_DESKTOP") == std::vector<std::uint32_t>{1};
    }));
    const Frame home = desktop.frame(elsewhere);

    desktop.press(kArrange);

    expectInZone(here, 1);
    EXPECT_EQ(desktop.frame(elsewhere), home);
}

INSTANTIATE_TEST_SUITE_P(Several, ArrangeDesktopsTest,
                         testing::Values(WindowManagerKind::Openbox, WindowManagerKind::Xfwm4,
                                         WindowManagerKind::Metacity, WindowManagerKind::Icewm),
                         managerName);

/// Two displays of different size, under window managers that allow windows across both.
class ArrangeDisplaysTest : public testing::TestWithParam<WindowManagerKind> {
protected:
    ArrangeDisplaysTest() { EXPECT_TRUE(desktop.start()); }
    ~ArrangeDisplaysTest() override { EXPECT_TRUE(desktop.stop()); }

    xcb_window_t openAt(const Frame& frame) {
        const xcb_window_t window = desktop.open(client);
        desktop.observer().moveOuterFrame(window, frame);
        EXPECT_EQ(desktop.settledFrame(window, frame), frame);
        return window;
    }

    void expectInZone(xcb_window_t window, const Frame& area, std::size_t number) {
        const Frame wanted = frameIn(area, kZones.at(number - 1));
        EXPECT_EQ(desktop.settledFrame(window, wanted), wanted) << "zone " << number;
    }

    Desktop desktop{{.manager = GetParam(),
                     .server = {.width = 2560, .height = 1024, .monitors = twoMonitors()},
                     .settings = kNoHomes}};
    const Frame left = desktop.usableArea(0);
    const Frame right = desktop.usableArea(1);
    TestClient client{desktop.server()};
};

TEST_P(ArrangeDisplaysTest, OnlyTheDisplayOfTheActiveWindowIsArranged) {
    const Frame home{100, 100, 500, 300};
    const xcb_window_t onLeft = openAt(home);
    const xcb_window_t onRight = openAt({1700, 200, 450, 300});
    const xcb_window_t mostlyOnRight = openAt({1300, 300, 500, 350});

    desktop.press(kArrange);

    expectInZone(mostlyOnRight, right, 1);
    expectInZone(onRight, right, 2);
    EXPECT_EQ(desktop.frame(onLeft), home);

    ASSERT_TRUE(desktop.activate(onLeft));
    desktop.press(kArrange);

    expectInZone(onLeft, left, 1);
    expectInZone(mostlyOnRight, right, 1);
}

INSTANTIATE_TEST_SUITE_P(Most, ArrangeDisplaysTest,
                         testing::Values(WindowManagerKind::Openbox, WindowManagerKind::Kwin,
                                         WindowManagerKind::Mutter),
                         managerName);

} // namespace
} // namespace tessarel::x11test
