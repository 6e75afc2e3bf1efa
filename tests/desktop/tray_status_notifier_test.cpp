// SPDX-License-Identifier: MIT

#include "desktop/status_notifier_panel.h"
#include "desktop/tray_desktop.h"
#include "support/x11/window_manager.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <ctime>

namespace tessarel::x11test {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;

/// A desktop with a session bus and a panel that draws icons and menus from what it reads there.
class TrayStatusNotifierTest : public testing::Test {
protected:
    static Environment withBus(Environment environment, const DesktopBus& bus) {
        environment["DBUS_SESSION_BUS_ADDRESS"] = bus.address();
        return environment;
    }

    void startPanel() {
        panel = startXfce4Panel(server, environment);
        ASSERT_TRUE(observer.waitUntil([&] { return desktop.isThere(); })) << panel->errors();
    }
    void startProbe() {
        probe.emplace(environment, observer);
        ASSERT_TRUE(observer.waitUntil([&] { return !desktop.item().empty(); })) << "no item";
    }
    bool waitForProperty(std::string_view name, const std::string& content) {
        return observer.waitUntil([&] { return desktop.property(name).find(content) != std::string::npos; });
    }
    /// Returns the CPU time that the probe has used so far.
    std::chrono::nanoseconds processorTime() {
        clockid_t clock{};
        timespec used{};
        EXPECT_EQ(::clock_getcpuclockid(probe->process().pid(), &clock), 0);
        EXPECT_EQ(::clock_gettime(clock, &used), 0);
        return std::chrono::seconds(used.tv_sec) + std::chrono::nanoseconds(used.tv_nsec);
    }
    std::string openedMenu() {
        desktop.aboutToShowMenu();
        return desktop.menu();
    }

    XServer server{{.width = 800, .height = 600}};
    DesktopBus bus{server.environment()};
    Environment environment = withBus(server.environment(), bus);
    WindowManager manager{server, WindowManagerKind::Openbox};
    Observer observer{server.display()};
    Mouse mouse{observer};
    StatusNotifierPanel desktop{environment};
    std::unique_ptr<ChildProcess> panel;
    std::optional<StatusItemProbe> probe;
};

TEST_F(TrayStatusNotifierTest, TheItemHasIconsOfItsOwnAndAToolTip) {
    startPanel();
    startProbe();

    const std::string pixmaps = desktop.property("IconPixmap");
    for (const char* size : {"(16, 16,", "(22, 22,", "(24, 24,", "(32, 32,"})
        EXPECT_THAT(pixmaps, HasSubstr(size));
    EXPECT_TRUE(waitForProperty("ToolTip", "Status item probe"));
}

TEST_F(TrayStatusNotifierTest, TheMenuIsRebuiltEachTimeItOpens) {
    startPanel();
    startProbe();

    openedMenu();
    const std::string menu = openedMenu();

    EXPECT_THAT(menu, AllOf(HasSubstr("'label': <'Alpha'>"), HasSubstr("'label': <'Beta'>"),
                            HasSubstr("'label': <'Names'>"), HasSubstr("'label': <'Quit'>")));
    EXPECT_THAT(menu, Not(HasSubstr("'label': <'Asked 1'>"))) << "the menu was requested at least twice";
    EXPECT_THAT(menu, HasSubstr("'children-display': <'submenu'>"));
    EXPECT_THAT(menu, HasSubstr("'toggle-state': <1>"));
}

TEST_F(TrayStatusNotifierTest, ChoosingARowSelectsItsItem) {
    startPanel();
    startProbe();

    ASSERT_TRUE(desktop.choose(openedMenu(), "Alpha"));

    EXPECT_THAT(probe->heardUpTo("selected Alpha"), Contains("selected Alpha"));
}

TEST_F(TrayStatusNotifierTest, ChoosingARowOfASubmenuSelectsItsItem) {
    startPanel();
    startProbe();

    ASSERT_TRUE(desktop.choose(openedMenu(), "my__layout__"));

    EXPECT_THAT(probe->heardUpTo("selected my_layout_"), Contains("selected my_layout_"));
}

TEST_F(TrayStatusNotifierTest, TitlesReachThePanelAsPlainText) {
    startPanel();
    startProbe();

    const std::string menu = openedMenu();

    // In a label, an underscore marks the mnemonic, and two of them stand for a literal one.
    for (const char* label : {"Code _& Docs & more", "my__layout__", "<b>bold</b>", "two lines", "R_&"})
        EXPECT_THAT(menu, HasSubstr("'label': <'" + std::string(label) + "'>"));
    EXPECT_THAT(menu, HasSubstr("WWWWWWWW…'"));
    EXPECT_LT(menu.size(), 8000U) << "a name of 10,000 characters is not truncated";
}

TEST_F(TrayStatusNotifierTest, TheMainButtonOpensTheMenuToo) {
    startPanel();
    startProbe();
    mouse.moveTo(300, 300);

    desktop.activate(300, 300);

    ASSERT_TRUE(observer.waitUntil([&] { return !probe->menus().empty(); }));
    const Frame menu = probe->menus().at(0);
    EXPECT_EQ(menu.x, 300);
    mouse.clickCentre(StatusItemProbe::row(menu, 2, 5), Mouse::kLeft);
    EXPECT_THAT(probe->heardUpTo("selected Beta"), Contains("selected Beta"));
}

TEST_F(TrayStatusNotifierTest, TheSecondButtonOpensOurMenuForPanelsThatDrawNone) {
    startPanel();
    startProbe();
    mouse.moveTo(200, 100);

    desktop.contextMenu(200, 100);

    EXPECT_TRUE(observer.waitUntil([&] { return !probe->menus().empty(); }));
}

TEST_F(TrayStatusNotifierTest, ADisabledItemChangesItsIcons) {
    startPanel();
    startProbe();
    const std::string before = desktop.property("IconPixmap");

    probe->tell("disabled yes");

    EXPECT_TRUE(observer.waitUntil([&] { return desktop.property("IconPixmap") != before; }));
}

TEST_F(TrayStatusNotifierTest, APanelStartedLaterShowsTheItem) {
    probe.emplace(environment, observer);

    startPanel();

    EXPECT_TRUE(observer.waitUntil([&] { return !desktop.item().empty() || probe->icon(); }));
}

TEST_F(TrayStatusNotifierTest, ARestartedPanelShowsTheItemAgain) {
    startPanel();
    startProbe();
    for (int i = 0; i < 2; ++i) {
        panel->kill();
        ASSERT_TRUE(observer.waitUntil([&] { return !desktop.isThere(); }));
        startPanel();
        ASSERT_TRUE(observer.waitUntil([&] { return !desktop.item().empty(); })) << i;
    }

    ASSERT_TRUE(desktop.choose(openedMenu(), "Alpha"));

    EXPECT_THAT(probe->heardUpTo("selected Alpha"), Contains("selected Alpha"));
}

TEST_F(TrayStatusNotifierTest, TheProgramSurvivesTheEndOfTheBus) {
    startPanel();
    startProbe();

    bus.kill();
    probe->tell("disabled yes");
    probe->tell("title TS");
    probe->tell("clear");

    EXPECT_TRUE(probe->process().running()) << probe->process().errors();
}

TEST_F(TrayStatusNotifierTest, ARestartOfTheBusCausesNoBusyLoop) {
    startPanel();
    startProbe();
    const auto since = std::chrono::steady_clock::now();
    const std::chrono::nanoseconds busyBefore = processorTime();
    bus.kill();
    panel->kill();
    probe->tell("disabled yes");

    bus.start();
    startPanel();
    probe->tell("disabled no");

    EXPECT_LT(processorTime() - busyBefore, (std::chrono::steady_clock::now() - since) / 2);
    EXPECT_TRUE(probe->process().running()) << probe->process().errors();
}

TEST_F(TrayStatusNotifierTest, DestroyingTheSubscriptionRemovesTheItem) {
    startPanel();
    startProbe();

    probe->tell("remove");

    EXPECT_TRUE(observer.waitUntil([&] { return desktop.item().empty(); }));
}

} // namespace
} // namespace tessarel::x11test
