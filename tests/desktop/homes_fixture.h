// SPDX-License-Identifier: MIT

#pragma once

#include "desktop/snap_fixture.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace tessarel::x11test {

/// These tests use a few window managers only, because placing a new window takes nothing beyond an ordinary
/// snap.
inline constexpr std::array kManagersForHomes = {WindowManagerKind::Openbox, WindowManagerKind::Xfwm4,
                                                 WindowManagerKind::Kwin};

/// A program with a window class of its own per test, which gets a home zone once one of its windows is
/// snapped.
class HomesFixture : public SnapFixture {
protected:
    HomesFixture() : SnapFixture(kUsualSettings) {}

    /// Returns the options of the program's windows.
    [[nodiscard]] WindowOptions own() const { return {.className = m_className}; }

    void expectInZone(xcb_window_t window, int number) {
        EXPECT_EQ(desktop.settledFrame(window, zoneFrame(number)), zoneFrame(number)) << "zone " << number;
    }
    /// Snaps a window of the program with its hot key, which sets the home zone, and kills the program.
    void giveHome(int number) {
        TestClient first{desktop.server()};
        snap(desktop.open(first, own()), number);
        first.process().kill();
        EXPECT_TRUE(desktop.waitUntilOnlyPanel());
    }

    /// Opens a window and waits until it is managed. It may be unfocused or unmapped.
    [[nodiscard]] xcb_window_t open(TestClient& owner, const WindowOptions& options) {
        const xcb_window_t window = owner.open(options);
        desktop.observer().watch(window);
        EXPECT_TRUE(desktop.observer().waitUntil([&] { return desktop.observer().hasTakenCharge(window); }));
        EXPECT_TRUE(desktop.observer().settle());
        return window;
    }
    /// Waits until all windows opened before have been placed or skipped. Windows are processed in the order
    /// in which they open, so a further window of the same running program is the last one.
    void waitForTurnOfAllBefore(int number) { expectInZone(open(client, own()), number); }

private:
    std::string m_className = testing::UnitTest::GetInstance()->current_test_info()->name();
};

} // namespace tessarel::x11test
