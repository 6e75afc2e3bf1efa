// SPDX-License-Identifier: MIT

#include "desktop/desktop.h"
#include "desktop/expected.h"
#include "desktop/tray_desktop.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tessarel::x11test {
namespace {

using testing::HasSubstr;
using testing::Not;

// Row positions in the menu of a program with all permissions. Separators are too thin to count.
constexpr int kRows = 13;
constexpr int kZone1Row = 1;
constexpr int kArrangeRow = 6;
constexpr int kMoveWindowRow = 7;
constexpr int kLayoutsRow = 8;
constexpr int kPauseRow = 9;
constexpr int kUpdatesRow = 11;
constexpr int kQuitRow = 12;
constexpr int kSubmenuRows = 9; // of both submenus
constexpr int kLeftHalfRow = 0;
constexpr int kHalvesRow = 1;
constexpr int kDimmed = 150; // between the contrast of a normal icon and that of a dimmed one
constexpr Combination kEscape{9};
constexpr Combination kReturn{key::kReturn};

/// The program with its icon embedded in a panel (XEmbed), used with the mouse.
class MenuTest : public testing::Test {
protected:
    static Environment withoutBus(Environment environment) {
        environment["DBUS_SESSION_BUS_ADDRESS"] = "disabled:";
        return environment;
    }

    MenuTest() {
        const Frame all = observer.clientFrame(observer.root()).value_or(Frame{});
        EXPECT_TRUE(observer.waitUntil([&] {
            area = observer.workArea().value_or(all);
            return area.height < all.height;
        })) << "the panel has no room of its own";
    }

    void start(std::string_view settings = kUsualSettings, const Environment& added = {}) {
        writeSettings(server, settings);
        Environment environment = server.environment();
        for (const auto& [name, value] : added)
            environment[name] = value;
        program.emplace(environment);
        ASSERT_TRUE(program->waitUntilReady(observer, keyboard)) << program->errors();
    }

    xcb_window_t openWindow(const WindowOptions& options = {}) {
        const xcb_window_t window = client.open(options);
        EXPECT_TRUE(observer.waitUntil([&] { return observer.activeWindow() == window; }));
        EXPECT_TRUE(observer.settle());
        observer.watch(window);
        return window;
    }

    bool waitForMenus(std::size_t count) {
        return observer.waitUntil([&] { return item.menus().size() == count; });
    }
    /// Waits until the program has processed all input.
    bool waitUntilAtRest() { return program->waitUntilAtRest(observer); }
    void openMenu() {
        ASSERT_TRUE(waitUntilAtRest());
        mouse.clickCentre(item.waitForIcon(), Mouse::kLeft);
        ASSERT_TRUE(waitForMenus(1)) << "no menu opens";
    }
    /// Repeats Escape, because a menu that has just opened may not have grabbed the keyboard yet.
    void closeMenu() {
        ASSERT_TRUE(observer.waitUntil([&] {
            keyboard.press(kEscape);
            return item.menus().empty();
        }));
    }
    /// Waits until the layout is stored and in use: the hot keys are grabbed again after it is stored.
    bool waitUntilLayoutIsKept() {
        return waitUntilStored(observer, server, R"("zones")") && waitUntilAtRest();
    }
    /// A paused program draws its icon in a darker grey.
    bool waitUntilDimmed() {
        return observer.waitUntil([&] { return item.contrast() > 0 && item.contrast() < kDimmed; });
    }
    bool waitUntilNotDimmed() {
        return observer.waitUntil([&] { return item.contrast() > kDimmed; });
    }
    void choose(int row) { chooseOf(kRows, row); }
    /// Chooses a row of a menu with this number of rows.
    void chooseOf(int rows, int row) {
        openMenu();
        mouse.clickCentre(ShownStatusItem::row(item.menus().at(0), row, rows), Mouse::kLeft);
        EXPECT_TRUE(waitForMenus(0)) << "the menu stays open";
    }
    void choose(int parentRow, int row) {
        openMenu();
        mouse.clickCentre(ShownStatusItem::row(item.menus().at(0), parentRow, kRows), Mouse::kLeft);
        ASSERT_TRUE(waitForMenus(2)) << "no submenu opens";
        mouse.clickCentre(ShownStatusItem::row(item.menus().at(1), row, kSubmenuRows), Mouse::kLeft);
        EXPECT_TRUE(waitForMenus(0)) << "the menu stays open";
    }

    /// Waits until `window` has the frame `wanted` and keeps it.
    testing::AssertionResult goesTo(xcb_window_t window, const Frame& wanted) {
        const auto there = [&] { return observer.outerFrame(window) == wanted; };
        if (observer.waitUntil([&] { return there() && observer.settle() && there(); }))
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << "it is at " << observer.outerFrame(window).value_or(Frame{});
    }

    [[nodiscard]] std::string settings() const { return storedSettings(server); }

    /// Waits until the program shows an alert, which is active then.
    bool waitForAlert() {
        const auto isActive = [&] {
            return observer.text(observer.activeWindow(), "WM_CLASS").find("tessarel") != std::string::npos;
        };
        return observer.waitUntil(isActive) && observer.settle();
    }
    /// Uses the menu, which has `rowsAbove` rows more than usual, to pause and to quit.
    void expectPauseAndQuitWork(int rowsAbove) {
        const int rows = kRows + rowsAbove;
        chooseOf(rows, kPauseRow + rowsAbove);
        EXPECT_TRUE(waitUntilDimmed());
        chooseOf(rows, kPauseRow + rowsAbove);
        EXPECT_TRUE(waitUntilNotDimmed());
        chooseOf(rows, kQuitRow + rowsAbove);
        EXPECT_EQ(program->process().waitForExit(), 0);
    }

    XServer server{{.width = 1000, .height = 700}};
    WindowManager manager{server, WindowManagerKind::Openbox};
    Observer observer{server.display()};
    Keyboard keyboard{server, observer};
    Mouse mouse{observer};
    TestClient client{server};
    std::unique_ptr<ChildProcess> panel = startTint2(server, withoutBus(server.environment()));
    ShownStatusItem item{observer, "tessarel"};
    std::optional<Program> program;
    Frame area;
};

TEST_F(MenuTest, AZoneRowSnapsTheActiveWindow) {
    start();
    const xcb_window_t window = openWindow();

    choose(kZone1Row);

    EXPECT_TRUE(goesTo(window, frameIn(area, kZones[0])));
}

TEST_F(MenuTest, AMoveFromTheSubmenuMovesTheActiveWindow) {
    start();
    const xcb_window_t window = openWindow();

    choose(kMoveWindowRow, kLeftHalfRow);

    EXPECT_TRUE(goesTo(window, frameIn(area, kLeftHalf)));
    EXPECT_EQ(observer.activeWindow(), window);
}

TEST_F(MenuTest, ArrangingPutsTheFrontWindowFirst) {
    start();
    const xcb_window_t back = openWindow({.client = {60, 60, 400, 300}});
    const xcb_window_t front = openWindow({.client = {120, 120, 410, 310}});

    choose(kArrangeRow);

    EXPECT_TRUE(goesTo(front, frameIn(area, kZones[0])));
    EXPECT_TRUE(goesTo(back, frameIn(area, kZones[1])));
}

TEST_F(MenuTest, ApplyingALayoutStoresItAndMovesNoWindow) {
    start();
    const xcb_window_t window = openWindow();
    const auto before = observer.outerFrame(window);

    choose(kLayoutsRow, kHalvesRow);

    ASSERT_TRUE(waitUntilLayoutIsKept()) << settings();
    EXPECT_EQ(observer.outerFrame(window), before);
    keyboard.press(hotkey::zone(2));
    EXPECT_TRUE(goesTo(window, frameIn(area, kRightHalf)));
}

TEST_F(MenuTest, TheMenuHasARowForEachZoneOfTheLayout) {
    start();
    openMenu();
    const int rowHeight = item.menus().at(0).height / kRows;
    mouse.clickCentre(ShownStatusItem::row(item.menus().at(0), 0, kRows), Mouse::kLeft); // the title row
    ASSERT_TRUE(waitUntilAtRest());
    ASSERT_EQ(item.menus().size(), 1U);
    const int before = item.menus().at(0).height;
    closeMenu();

    choose(kLayoutsRow, kHalvesRow);
    ASSERT_TRUE(waitUntilLayoutIsKept());
    openMenu();

    EXPECT_EQ(item.menus().at(0).height, before - 3 * rowHeight);
}

TEST_F(MenuTest, PauseStopsTheHotKeysUntilItIsChosenAgain) {
    start();
    const xcb_window_t window = openWindow();
    const auto before = observer.outerFrame(window);
    ASSERT_TRUE(waitUntilNotDimmed());

    choose(kPauseRow);
    ASSERT_TRUE(waitUntilDimmed());
    keyboard.press(hotkey::zone(1));
    ASSERT_TRUE(waitUntilAtRest());
    EXPECT_EQ(observer.outerFrame(window), before);

    choose(kPauseRow);
    ASSERT_TRUE(waitUntilNotDimmed());
    EXPECT_EQ(observer.outerFrame(window), before);
    keyboard.press(hotkey::zone(2));
    EXPECT_TRUE(goesTo(window, frameIn(area, kZones[1])));
}

TEST_F(MenuTest, TheFirstMenuIsLightOrDarkAsTheDesktop) {
    constexpr int kMiddle = 128;
    start();
    openMenu();
    ASSERT_TRUE(waitUntilAtRest());
    EXPECT_GT(item.brightness(item.menus().at(0)), kMiddle);
    EXPECT_EQ(program->terminate(), 0);

    start(kUsualSettings, {{"GTK_THEME", "Adwaita:dark"}});
    openMenu();
    ASSERT_TRUE(waitUntilAtRest());

    EXPECT_LT(item.brightness(item.menus().at(0)), kMiddle);
}

TEST_F(MenuTest, QuitEndsTheProgramCleanly) {
    start();

    choose(kQuitRow);

    EXPECT_EQ(program->process().waitForExit(), 0);
    EXPECT_EQ(program->errors(), "");
    EXPECT_TRUE(keyboard.waitUntilNotHeld(hotkey::zone(1)));
    EXPECT_EQ(settings(), kUsualSettings);
    EXPECT_TRUE(observer.waitUntil([&] { return !item.icon(); }));
}

TEST_F(MenuTest, AnOpenMenuDoesNotKeepTheProgramFromExiting) {
    start();
    openMenu();

    EXPECT_EQ(program->terminate(), 0);

    EXPECT_EQ(program->errors(), "");
    EXPECT_TRUE(keyboard.waitUntilNotHeld(hotkey::zone(1)));
    EXPECT_TRUE(waitForMenus(0));
}

TEST_F(MenuTest, TheProgramExitsWithAMessageWhenTheServerDiesUnderAnOpenMenu) {
    start();
    openMenu();

    server.kill();

    EXPECT_EQ(program->process().waitForExit(), 1);
    EXPECT_EQ(program->errors(), "tessarel: lost the connection to the X display\n");
}

TEST_F(MenuTest, AProgramThatWasPausedAndQuitIsNotPausedWhenItStartsAgain) {
    start();
    choose(kPauseRow);
    ASSERT_TRUE(waitUntilDimmed());
    choose(kQuitRow);
    ASSERT_EQ(program->process().waitForExit(), 0);

    start(settings());

    item.waitForIcon();
    EXPECT_TRUE(waitUntilNotDimmed());
    const xcb_window_t window = openWindow();
    keyboard.press(hotkey::zone(1));
    EXPECT_TRUE(goesTo(window, frameIn(area, kZones.at(0))));
}

TEST_F(MenuTest, TheMenuWorksAfterTheWelcomeOfTheFirstStart) {
    start("{}");
    ASSERT_TRUE(waitForAlert());

    keyboard.press(kReturn);

    ASSERT_TRUE(waitUntilStored(observer, server, R"("hasOnboarded":true)")) << settings();
    EXPECT_TRUE(observer.waitUntil([&] { return observer.clients().size() == 1; }))
        << "only the panel is left";
    choose(kQuitRow);
    EXPECT_EQ(program->process().waitForExit(), 0);
}

TEST_F(MenuTest, TheMenuWorksWhileTheWelcomeStands) {
    start("{}");
    ASSERT_TRUE(waitForAlert());

    expectPauseAndQuitWork(0);

    EXPECT_EQ(settings(), "{}") << "quitting counts as welcomed";
}

TEST_F(MenuTest, TheMenuWorksWhileTheProgramSaysThatItCannotMoveWindows) {
    server.setMonitors(
        {{.name = "XWAYLAND0", .x = 0, .y = 0, .width = 1000, .height = 700, .primary = true}});
    start(kUsualSettings, {{"XDG_SESSION_TYPE", "wayland"}});
    ASSERT_TRUE(waitForAlert());

    expectPauseAndQuitWork(1); // the row that asks for the permission
}

TEST_F(MenuTest, TheMenuWorksWhileTheResultOfAnUpdateCheckStands) {
    start();
    choose(kUpdatesRow);
    ASSERT_TRUE(waitForAlert());

    expectPauseAndQuitWork(0);
}

} // namespace
} // namespace tessarel::x11test
