#pragma once

#include "desktop/snap_fixture.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace tessarel::x11test {

/// The window managers that this is tried with: it asks of them no more than placing a window does.
inline constexpr std::array kManagersForHomes = {WindowManagerKind::Openbox, WindowManagerKind::Xfwm4,
                                                 WindowManagerKind::Kwin};

/// A program of which nobody but the test knows, and which gets a home once one of its windows is snapped.
class HomesFixture : public SnapFixture {
protected:
    HomesFixture() : SnapFixture(kUsualSettings) {}

    /// What the windows of the program are like.
    [[nodiscard]] WindowOptions own() const { return {.className = m_className}; }

    void expectInZone(xcb_window_t window, int number) {
        EXPECT_EQ(desktop.settledFrame(window, zoneFrame(number)), zoneFrame(number)) << "zone " << number;
    }
    /// Snaps a window of the program by hand and ends it.
    void giveHome(int number) {
        TestClient first{desktop.server()};
        snap(desktop.open(first, own()), number);
        first.process().kill();
        EXPECT_TRUE(desktop.waitUntilOnlyPanel());
    }

    /// Opens a window and waits until it is managed; it may come up without the focus, or unseen.
    [[nodiscard]] xcb_window_t open(TestClient& owner, const WindowOptions& options) {
        const xcb_window_t window = owner.open(options);
        desktop.observer().watch(window);
        EXPECT_TRUE(desktop.observer().waitUntil([&] { return desktop.observer().hasTakenCharge(window); }));
        EXPECT_TRUE(desktop.observer().settle());
        return window;
    }
    /// Waits until all that was opened before has had its turn: windows have it in the order they come in,
    /// so the next one of the same running program has it last.
    void waitForTurnOfAllBefore(int number) { expectInZone(open(client, own()), number); }

private:
    std::string m_className = testing::UnitTest::GetInstance()->current_test_info()->name();
};

} // namespace tessarel::x11test
