// SPDX-License-Identifier: MIT

#pragma once

#include "desktop/desktop.h"
#include "desktop/expected.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace tessarel::x11test {

/// A client on the shared desktop of each window manager.
class SnapFixture : public testing::TestWithParam<WindowManagerKind> {
protected:
    explicit SnapFixture(std::string_view settings = kNoHomes)
        : desktop(sharedDesktop(GetParam(), settings)) {}
    ~SnapFixture() override {
        client.process().kill();
        EXPECT_TRUE(desktop.waitUntilOnlyPanel());
    }

    [[nodiscard]] Frame zoneFrame(int number) {
        return frameIn(desktop.usableArea(), kZones.at(static_cast<std::size_t>(number - 1)));
    }

    /// Presses the hot key of a zone and expects `target` to take the frame of the zone.
    void snap(xcb_window_t target, int number) {
        desktop.press(hotkey::zone(number));
        EXPECT_EQ(desktop.settledFrame(target, zoneFrame(number)), zoneFrame(number)) << "zone " << number;
    }

    /// Expects that the next press still snaps another window: earlier presses have been processed, and the
    /// program is running.
    void expectNextPressWorks() {
        TestClient otherClient{desktop.server()};
        const xcb_window_t other = desktop.open(otherClient);
        snap(other, 4);
        EXPECT_TRUE(desktop.program().running());
    }

    Desktop& desktop;
    TestClient client{desktop.server()};
};

inline std::string managerName(const testing::TestParamInfo<WindowManagerKind>& info) {
    return std::string(name(info.param));
}

} // namespace tessarel::x11test
