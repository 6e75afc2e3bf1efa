// SPDX-License-Identifier: MIT

#include "desktop/tray_desktop.h"
#include "support/x11/window_manager.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>

namespace tessarel::x11test {
namespace {

using testing::Contains;
using testing::ElementsAre;

constexpr int kRows = 5; // of the probe's menu

/// A desktop without a session bus and with a panel that embeds icons as windows.
class TrayXEmbedTest : public testing::Test {
protected:
    static Environment withoutBus(Environment environment) {
        environment["DBUS_SESSION_BUS_ADDRESS"] = "disabled:";
        return environment;
    }

    void startPanel() { panel = startTint2(server, environment); }
    void startProbe() { probe.emplace(environment, observer); }

    Frame openMenu(std::uint8_t button) {
        mouse.clickCentre(probe->waitForIcon(), button);
        EXPECT_TRUE(observer.waitUntil([&] { return !probe->menus().empty(); })) << "no menu opens";
        return probe->menus().at(0);
    }
    bool waitUntilClosed() {
        return observer.waitUntil([&] { return probe->menus().empty(); });
    }

    XServer server{{.width = 800, .height = 600}};
    Environment environment = withoutBus(server.environment());
    WindowManager manager{server, WindowManagerKind::Openbox};
    Observer observer{server.display()};
    Mouse mouse{observer};
    std::unique_ptr<ChildProcess> panel;
    std::optional<StatusItemProbe> probe;
};

class TrayXEmbedButtonTest : public TrayXEmbedTest, public testing::WithParamInterface<std::uint8_t> {};

TEST_P(TrayXEmbedButtonTest, OpensTheMenuAndChoosesARow) {
    startPanel();
    startProbe();
    const Frame menu = openMenu(GetParam());

    mouse.clickCentre(StatusItemProbe::row(menu, 1, kRows), Mouse::kLeft);

    EXPECT_THAT(probe->heardUpTo("selected Alpha"), ElementsAre("asked 1", "selected Alpha"));
    EXPECT_TRUE(waitUntilClosed());
}

INSTANTIATE_TEST_SUITE_P(Either, TrayXEmbedButtonTest, testing::Values(Mouse::kLeft, Mouse::kRight));

TEST_F(TrayXEmbedTest, TheMenuIsRequestedEachTimeItOpens) {
    startPanel();
    startProbe();

    for (const char* asked : {"asked 1", "asked 2", "asked 3"}) {
        const Frame menu = openMenu(Mouse::kLeft);
        mouse.clickCentre(StatusItemProbe::row(menu, 1, kRows), Mouse::kLeft);
        EXPECT_THAT(probe->heardUpTo("selected Alpha"), ElementsAre(asked, "selected Alpha"));
        ASSERT_TRUE(waitUntilClosed());
    }
}

TEST_F(TrayXEmbedTest, TheIconAppearsOnceAPanelStarts) {
    startProbe();
    EXPECT_EQ(probe->icon(), std::nullopt);

    startPanel();

    EXPECT_NO_THROW(probe->waitForIcon());
}

TEST_F(TrayXEmbedTest, ARestartedPanelShowsTheIconAgain) {
    startPanel();
    startProbe();
    for (int i = 0; i < 3; ++i) {
        probe->waitForIcon();
        panel->kill();
        EXPECT_TRUE(observer.waitUntil([&] { return !probe->icon(); }));
        startPanel();
    }

    const Frame menu = openMenu(Mouse::kLeft);
    mouse.clickCentre(StatusItemProbe::row(menu, 2, kRows), Mouse::kLeft);

    EXPECT_THAT(probe->heardUpTo("selected Beta"), Contains("selected Beta"));
    EXPECT_TRUE(probe->process().running());
}

TEST_F(TrayXEmbedTest, AnOpenMenuWorksAfterThePanelDies) {
    startPanel();
    startProbe();
    const Frame menu = openMenu(Mouse::kLeft);

    panel->kill();
    mouse.clickCentre(StatusItemProbe::row(menu, 1, kRows), Mouse::kLeft);

    EXPECT_THAT(probe->heardUpTo("selected Alpha"), Contains("selected Alpha"));
}

TEST_F(TrayXEmbedTest, RemovingTheItemRemovesTheIcon) {
    startPanel();
    startProbe();
    probe->waitForIcon();

    probe->tell("remove");

    EXPECT_TRUE(observer.waitUntil([&] { return !probe->icon(); }));
}

TEST_F(TrayXEmbedTest, ATitleReplacesAMissingImage) {
    startPanel();
    startProbe();
    probe->waitForIcon();

    probe->tell("clear");
    EXPECT_TRUE(observer.waitUntil([&] { return !probe->icon(); }));
    probe->tell("title TS");

    EXPECT_NO_THROW(probe->waitForIcon());
}

TEST_F(TrayXEmbedTest, WithoutAPanelTheProgramStaysUsable) {
    startProbe();

    for (const char* command : {"disabled yes", "clear", "title TS", "symbol square.grid.2x2", "remove"})
        probe->tell(command);

    EXPECT_TRUE(probe->process().running());
    EXPECT_EQ(probe->process().errors(), "");
}

TEST_F(TrayXEmbedTest, TheProgramExitsWithoutACrashWhenTheServerDies) {
    startPanel();
    startProbe();
    probe->waitForIcon();

    server.kill();

    const auto exitCode = probe->process().waitForExit();
    ASSERT_TRUE(exitCode.has_value());
    EXPECT_LT(*exitCode, 128) << probe->process().errors();
}

} // namespace
} // namespace tessarel::x11test
