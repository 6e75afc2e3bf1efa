// SPDX-License-Identifier: MIT

#include "desktop/desktop.h"
#include "desktop/expected.h"

#include <gtest/gtest.h>

namespace tessarel::x11test {
namespace {

/// The program from start to exit.
class SessionTest : public testing::Test {
protected:
    Frame zoneFrame(int number, const Spacing& spacing = {}) {
        return frameIn(desktop.usableArea(), kZones.at(static_cast<std::size_t>(number - 1)), spacing);
    }

    void expectSnap(xcb_window_t window, int number, const Spacing& spacing = {}) {
        const Frame wanted = zoneFrame(number, spacing);
        desktop.press(hotkey::zone(number));
        EXPECT_EQ(desktop.settledFrame(window, wanted), wanted) << "zone " << number;
    }

    /// Starts a second instance, which makes the first one show its settings window.
    xcb_window_t openSettings() {
        const xcb_window_t window = openSettingsWindow(desktop.observer(), desktop.server().environment());
        EXPECT_NE(window, xcb_window_t{XCB_WINDOW_NONE});
        return window;
    }

    Desktop desktop{{}};
    TestClient client{desktop.server()};
};

TEST_F(SessionTest, ExitsCleanlyAndSilentlyOnSigterm) {
    ASSERT_TRUE(desktop.start());

    EXPECT_TRUE(desktop.stop());

    EXPECT_EQ(desktop.program().errors(), "");
}

TEST_F(SessionTest, ASecondInstanceExitsAndTheFirstKeepsWorking) {
    ASSERT_TRUE(desktop.start());
    const xcb_window_t window = desktop.open(client);

    openSettings();

    EXPECT_TRUE(desktop.activate(window));
    expectSnap(window, 1);
    EXPECT_TRUE(desktop.stop());
}

TEST_F(SessionTest, TheProgramsOwnWindowIsNotSnapped) {
    ASSERT_TRUE(desktop.start());
    const xcb_window_t window = desktop.open(client);
    const xcb_window_t settings = openSettings();
    const Frame before = desktop.frame(settings);

    desktop.press(hotkey::zone(1));
    EXPECT_TRUE(desktop.activate(window));
    expectSnap(window, 2); // the first press has been processed by now, too

    EXPECT_EQ(desktop.frame(settings), before);
    EXPECT_TRUE(desktop.stop());
}

TEST_F(SessionTest, GapAndMarginKeepWindowsApart) {
    writeSettings(desktop.server(), R"({"hasOnboarded":true,"gap":10,"margin":8})");
    ASSERT_TRUE(desktop.start());
    const xcb_window_t window = desktop.open(client);

    for (const int number : {1, 2, 3, 4, 5})
        expectSnap(window, number, {.gap = 10, .margin = 8});
    EXPECT_TRUE(desktop.stop());
}

TEST_F(SessionTest, TheZoneOfAnApplicationIsRemembered) {
    ASSERT_TRUE(desktop.start());
    const xcb_window_t window = desktop.open(client, {.className = "Editor"});
    expectSnap(window, 5);

    EXPECT_TRUE(waitUntilStored(desktop.observer(), desktop.server(), R"("Editor":4)"))
        << storedSettings(desktop.server());
    EXPECT_TRUE(desktop.stop());
}

TEST_F(SessionTest, AnIgnoredApplicationIsLeftAlone) {
    writeSettings(desktop.server(), R"({"hasOnboarded":true,"ignoredApps":["Editor"]})");
    ASSERT_TRUE(desktop.start());
    const xcb_window_t ignored = desktop.open(client, {.className = "Editor"});
    const Frame before = desktop.frame(ignored);
    desktop.press(hotkey::zone(1));

    const xcb_window_t other = desktop.open(client, {.className = "Browser"});
    expectSnap(other, 2);

    EXPECT_EQ(desktop.frame(ignored), before);
    EXPECT_TRUE(desktop.stop());
}

TEST_F(SessionTest, InvalidSettingsDoNotPreventTheStart) {
    writeSettings(desktop.server(), R"({"zones":"none","bindings":7)");
    desktop.observer().x().roundTrip();
    ASSERT_TRUE(desktop.start());
    EXPECT_TRUE(desktop.keyboard().held(hotkey::zone(1)));
}

TEST_F(SessionTest, SnappingWorksAfterTheWindowManagerIsReplaced) {
    ASSERT_TRUE(desktop.start());
    const xcb_window_t window = desktop.open(client);
    expectSnap(window, 1);

    for (const WindowManagerKind next : {WindowManagerKind::Xfwm4, WindowManagerKind::Openbox}) {
        desktop.replaceManager(next);
        ASSERT_TRUE(desktop.activate(window)) << next;
        expectSnap(window, 4);
        expectSnap(window, 2);
    }
    EXPECT_TRUE(desktop.stop());
}

TEST_F(SessionTest, ExitsWithAMessageWhenTheServerDies) {
    ASSERT_TRUE(desktop.startForDrags()); // Qt does not handle the loss of the server during its startup

    desktop.server().kill();

    EXPECT_TRUE(desktop.program().process().waitForExit().has_value());
    EXPECT_EQ(desktop.program().errors().find("Sanitizer"), std::string::npos) << desktop.program().errors();
    EXPECT_NE(desktop.program().errors(), "");
}

TEST_F(SessionTest, AMissingDisplayIsNamedInTheErrorMessage) {
    Environment environment = desktop.server().environment();
    environment["DISPLAY"] = ":4000";

    Program program(environment);

    EXPECT_NE(program.process().waitForExit(), 0);
    EXPECT_NE(program.errors().find(":4000"), std::string::npos) << program.errors();
}

} // namespace
} // namespace tessarel::x11test
