// SPDX-License-Identifier: MIT

#include "desktop/real_program.h"
#include "desktop/snap_fixture.h"

#include <filesystem>

namespace tessarel::x11test {
namespace {

/// Windows of misbehaving programs, under each window manager.
class TargetsTest : public SnapFixture {};

TEST_P(TargetsTest, AStoppedProgramIsMovedAndDoesNotDelayOtherWindows) {
    const xcb_window_t window = desktop.open(client);
    client.stop();
    snap(window, 1);

    expectNextPressWorks();

    client.resume();
    EXPECT_EQ(desktop.settledFrame(window, zoneFrame(1)), zoneFrame(1));
}

TEST_P(TargetsTest, AWindowDestroyedAtThePressDoesNoHarm) {
    for (int round = 0; round < 5; ++round) {
        const xcb_window_t window = desktop.open(client);
        desktop.press(hotkey::zone(1 + round));
        client.destroy(window);
    }

    expectNextPressWorks();
}

TEST_P(TargetsTest, AProgramKilledAtThePressDoesNoHarm) {
    TestClient dying{desktop.server()};
    static_cast<void>(desktop.open(dying));
    desktop.press(hotkey::zone(2));
    dying.process().kill();

    expectNextPressWorks();
}

TEST_P(TargetsTest, AMinimizedWindowStaysMinimizedAndWhereItWas) {
    const xcb_window_t window = desktop.open(client);
    const Frame before = desktop.frame(window);
    Observer& observer = desktop.observer();
    observer.iconify(window);
    ASSERT_TRUE(observer.waitUntil([&] { return observer.hasState(window, "_NET_WM_STATE_HIDDEN"); }));

    desktop.press(hotkey::zone(1));

    expectNextPressWorks();
    EXPECT_TRUE(observer.hasState(window, "_NET_WM_STATE_HIDDEN"));
    ASSERT_TRUE(desktop.activate(window));
    EXPECT_EQ(desktop.settledFrame(window, before), before);
}

TEST_P(TargetsTest, AFullScreenWindowStaysFullScreen) {
    const xcb_window_t window = desktop.open(client);
    ASSERT_TRUE(desktop.addStates(window, {"_NET_WM_STATE_FULLSCREEN"}));
    const Frame before = desktop.frame(window);

    desktop.press(hotkey::zone(1));

    expectNextPressWorks();
    EXPECT_TRUE(desktop.observer().hasState(window, "_NET_WM_STATE_FULLSCREEN"));
    EXPECT_EQ(desktop.frame(window), before);
}

TEST_P(TargetsTest, MalformedWindowPropertiesDoNoHarm) {
    const xcb_window_t window = desktop.open(client);
    const std::string huge(200000, '\xff');
    for (const char* property : {"WM_NORMAL_HINTS", "_NET_WM_PID", "_GTK_FRAME_EXTENTS", "WM_CLASS",
                                 "_NET_WM_WINDOW_TYPE", "WM_TRANSIENT_FOR", "_GTK_APPLICATION_ID"})
        for (const int format : {8, 16, 32})
            for (const std::string& bytes : {std::string(), std::string(4, '\xff'), huge}) {
                client.setProperty(window, property, "INTEGER", format, bytes);
                desktop.press(hotkey::zone(1));
            }

    expectNextPressWorks();
}

TEST_P(TargetsTest, AnInvalidActiveWindowPropertyDoesNoHarm) {
    static_cast<void>(desktop.open(client));
    client.setProperty(desktop.observer().root(), "_NET_ACTIVE_WINDOW", "WINDOW", 32,
                       std::string("\x34\x12\xf0\x00", 4));
    desktop.press(hotkey::zone(1));
    client.setProperty(desktop.observer().root(), "_NET_ACTIVE_WINDOW", "STRING", 8, "nonsense");
    desktop.press(hotkey::zone(2));

    expectNextPressWorks();
}

INSTANTIATE_TEST_SUITE_P(Every, TargetsTest, testing::ValuesIn(kAllWindowManagers), managerName);

TEST(IgnoredProgramTest, IsLeftAloneWhenChosenByADesktopEntryNotNamedLikeItsWindowClass) {
    Desktop desktop(
        {.settings = R"({"hasOnboarded":true,"rememberApps":false,"ignoredApps":["debian-xterm"]})"});
    // Among the first entries to be read: hot keys do not wait for the others.
    const std::filesystem::path entries =
        desktop.server().environment().at("XDG_DATA_HOME") + "/applications";
    std::filesystem::create_directories(entries);
    std::filesystem::copy("/usr/share/applications/debian-xterm.desktop", entries);
    ASSERT_TRUE(desktop.start());
    const StartedProgram ignored = start(kXterm, desktop);
    ASSERT_TRUE(desktop.activate(ignored.window));
    const Frame before = desktop.frame(ignored.window);

    desktop.press(hotkey::zone(1));

    TestClient client(desktop.server());
    const xcb_window_t other = desktop.open(client);
    const Frame zone = frameIn(desktop.usableArea(), kZones[3]);
    desktop.press(hotkey::zone(4));
    EXPECT_EQ(desktop.settledFrame(other, zone), zone);
    EXPECT_EQ(desktop.frame(ignored.window), before);
    EXPECT_TRUE(desktop.stop());
}

} // namespace
} // namespace tessarel::x11test
