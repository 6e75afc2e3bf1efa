// SPDX-License-Identifier: MIT

#include "desktop/snap_fixture.h"

#include <array>

namespace tessarel::x11test {
namespace {

/// Two displays of different size under each window manager; the panel is on the right one.
class DisplaysTest : public testing::TestWithParam<WindowManagerKind> {
protected:
    DisplaysTest() { EXPECT_TRUE(desktop.start()); }
    ~DisplaysTest() override { EXPECT_TRUE(desktop.stop()); }

    void expectAfter(const Combination& combination, const Frame& wanted) {
        desktop.press(combination);
        EXPECT_EQ(desktop.settledFrame(window, wanted), wanted);
    }

    Desktop desktop{{.manager = GetParam(),
                     .server = {.width = 2560, .height = 1024, .monitors = twoMonitors()},
                     .settings = kNoHomes}};
    const Frame left = desktop.usableArea(0);
    const Frame right = desktop.usableArea(1);
    TestClient client{desktop.server()};
    const xcb_window_t window = desktop.open(client, {.client = {200, 150, 500, 400}});
};

TEST_P(DisplaysTest, ASnappedWindowStaysOnItsDisplay) {
    for (std::size_t zone = 0; zone < kZones.size(); ++zone)
        expectAfter(hotkey::zone(static_cast<int>(zone) + 1), frameIn(left, kZones.at(zone)));

    // Once another window has been snapped, the program has finished with this one.
    const xcb_window_t other = desktop.open(client);
    desktop.press(hotkey::kMaximize);
    ASSERT_EQ(desktop.settledFrame(other, left), left);
    ASSERT_TRUE(desktop.activate(window));
    desktop.observer().moveOuterFrame(window, {1700, 100, 500, 400});
    ASSERT_EQ(desktop.settledFrame(window, {1700, 100, 500, 400}), (Frame{1700, 100, 500, 400}));

    for (std::size_t zone = 0; zone < kZones.size(); ++zone)
        expectAfter(hotkey::zone(static_cast<int>(zone) + 1), frameIn(right, kZones.at(zone)));
    expectAfter(hotkey::kMaximize, right);
}

TEST_P(DisplaysTest, NextAndPreviousDisplayMoveTheWindowAndWrapAround) {
    const Frame onLeft = desktop.frame(window);
    const Frame onRight = carriedOver(onLeft, left, right);
    expectAfter(hotkey::kNextDisplay, onRight);
    const Frame backOnLeft = carriedOver(onRight, right, left);
    expectAfter(hotkey::kNextDisplay, backOnLeft);
    expectAfter(hotkey::kPreviousDisplay, carriedOver(backOnLeft, left, right));
}

TEST_P(DisplaysTest, RestoreBringsTheWindowBackToTheDisplayItCameFrom) {
    const Frame before = desktop.frame(window);
    expectAfter(hotkey::kNextDisplay, carriedOver(before, left, right));
    expectAfter(hotkey::zone(4), frameIn(right, kZones[3]));

    expectAfter(hotkey::kRestore, before);
}

TEST_P(DisplaysTest, AMaximizedWindowFillsTheNextDisplay) {
    expectAfter(hotkey::kMaximize, left);

    expectAfter(hotkey::kNextDisplay, right);
}

TEST_P(DisplaysTest, ChangedDisplaysTakeEffectAtTheNextPress) {
    expectAfter(hotkey::kMaximize, left);
    desktop.server().setMonitors(
        {{.name = "L", .x = 0, .y = 0, .width = 1280, .height = 800, .primary = true},
         {.name = "R", .x = 1280, .y = 0, .width = 1280, .height = 1024, .primary = false}});

    expectAfter(hotkey::kLeftHalf, {0, 0, 640, 800});
}

/// The other window managers constrain windows: xfwm4 ignores monitors without an output, and no other client
/// can see the space that icewm's task bar reserves when there are several monitors.
constexpr std::array kWithSeveralDisplays = {WindowManagerKind::Openbox, WindowManagerKind::Metacity,
                                             WindowManagerKind::Marco,   WindowManagerKind::Fluxbox,
                                             WindowManagerKind::Kwin,    WindowManagerKind::Mutter};

INSTANTIATE_TEST_SUITE_P(Most, DisplaysTest, testing::ValuesIn(kWithSeveralDisplays), managerName);

/// Known limitations of window managers, shown with a pager's request instead of Tessarel's.
class DisplayLimitsTest : public testing::Test {
protected:
    /// Returns the frame that a window ends up with after a request for `frame`.
    Frame askedFor(WindowManagerKind manager, const Frame& frame) {
        Desktop desktop{
            {.manager = manager, .server = {.width = 2560, .height = 1024, .monitors = twoMonitors()}}};
        TestClient client{desktop.server()};
        const xcb_window_t window = desktop.open(client);
        const Frame before = desktop.frame(window);
        desktop.observer().moveOuterFrame(window, frame);
        EXPECT_TRUE(desktop.observer().waitUntil([&] { return desktop.frame(window) != before; }));
        EXPECT_TRUE(desktop.observer().settle());
        return desktop.frame(window);
    }
};

TEST_F(DisplayLimitsTest, Xfwm4KeepsWindowsOffAMonitorWithoutAnOutput) {
    const Frame asked{1700, 100, 500, 400};
    EXPECT_LT(askedFor(WindowManagerKind::Xfwm4, asked).x, 1440);
}

TEST_F(DisplayLimitsTest, IcewmKeepsTitlesOffItsTaskBar) {
    const Frame asked{0, 450, 720, 450};
    EXPECT_LT(askedFor(WindowManagerKind::Icewm, asked).y, asked.y);
}

} // namespace
} // namespace tessarel::x11test
