// SPDX-License-Identifier: MIT

#include "desktop/real_program.h"
#include "desktop/snap_fixture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <tuple>
#include <vector>

namespace tessarel::x11test {
namespace {

using ProgramCell = std::tuple<WindowManagerKind, RealProgram>;

/// A stopped program whose toolkit synchronises resizing with the window manager (_NET_WM_SYNC_REQUEST).
class StoppedProgramTest : public testing::TestWithParam<ProgramCell> {
protected:
    ~StoppedProgramTest() override {
        program.process.reset();
        client.process().kill();
        EXPECT_TRUE(desktop.waitUntilOnlyPanel());
    }

    /// Returns true if the window manager waits for the program to redraw after each resize.
    [[nodiscard]] bool isSynchronised() {
        const auto protocols = observer.values(program.window, "WM_PROTOCOLS");
        return std::ranges::find(protocols, observer.x().atom("_NET_WM_SYNC_REQUEST")) != protocols.end();
    }

    void expectInZone(xcb_window_t window, int number) {
        const Frame zone = frameIn(desktop.usableArea(), kZones.at(static_cast<std::size_t>(number - 1)));
        EXPECT_EQ(desktop.settledFrame(window, zone), zone) << "zone " << number;
    }

    Desktop& desktop = sharedDesktop(std::get<0>(GetParam()), kNoHomes);
    Observer& observer = desktop.observer();
    TestClient client{desktop.server()};
    StartedProgram program = start(std::get<1>(GetParam()), desktop);
};

TEST_P(StoppedProgramTest, IsStillMovedAndDoesNotDelayOtherWindows) {
    ASSERT_TRUE(isSynchronised());
    ASSERT_TRUE(desktop.activate(program.window));
    desktop.press(hotkey::zone(5));
    expectInZone(program.window, 5);

    program.process->signal(SIGSTOP);
    desktop.press(hotkey::zone(4));
    expectInZone(program.window, 4);
    const xcb_window_t other = desktop.open(client);
    desktop.press(hotkey::zone(5));
    expectInZone(other, 5);

    program.process->signal(SIGCONT);
    expectInZone(program.window, 4);
    EXPECT_TRUE(desktop.program().running());
}

std::string cellName(const testing::TestParamInfo<ProgramCell>& info) {
    return std::string(name(std::get<0>(info.param))) + "_" + std::get<1>(info.param).name;
}

/// The window managers that wait for a program to redraw.
constexpr std::array kSynchronising = {
    WindowManagerKind::Openbox,  WindowManagerKind::Xfwm4,  WindowManagerKind::Metacity,
    WindowManagerKind::Marco,    WindowManagerKind::Icewm,  WindowManagerKind::Fluxbox,
    WindowManagerKind::Kwin,     WindowManagerKind::Mutter, WindowManagerKind::Jwm,
    WindowManagerKind::Blackbox,
};

INSTANTIATE_TEST_SUITE_P(Every, StoppedProgramTest,
                         testing::Combine(testing::ValuesIn(kSynchronising),
                                          testing::Values(kGtk3Program, kQtProgram)),
                         cellName);

} // namespace
} // namespace tessarel::x11test
