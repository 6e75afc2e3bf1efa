// SPDX-License-Identifier: MIT

#include "desktop/desktop.h"
#include "desktop/expected.h"
#include "desktop/status_notifier_panel.h"
#include "desktop/tray_desktop.h"

#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QString>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tessarel::x11test {
namespace {

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

/// The program with a panel that gets the menu over the session bus and draws it itself.
class MenuStatusNotifierTest : public testing::Test {
protected:
    MenuStatusNotifierTest() {
        writeSettings(server, kUsualSettings);
        EXPECT_TRUE(observer.waitUntil([&] { return desktop.isThere(); })) << panel->errors();
        program.emplace(environment);
        EXPECT_TRUE(program->waitUntilReady(observer, keyboard)) << program->errors();
        EXPECT_TRUE(observer.waitUntil([&] { return !desktop.item().empty(); })) << "no item";
    }

    std::string openedMenu() {
        desktop.aboutToShowMenu();
        return desktop.menu();
    }

    /// Returns true if the row with this label is checked when the menu opens.
    bool isMarked(const std::string& label) { return StatusNotifierPanel::isMarked(openedMenu(), label); }

    XServer server{{.width = 1000, .height = 700}};
    DesktopBus bus{server.environment()};
    Environment environment = bus.environmentOn(server);
    WindowManager manager{server, WindowManagerKind::Openbox};
    Observer observer{server.display()};
    Keyboard keyboard{server, observer};
    StatusNotifierPanel desktop{environment};
    std::unique_ptr<ChildProcess> panel = startXfce4Panel(server, environment);
    std::optional<Program> program;
};

TEST_F(MenuStatusNotifierTest, TheMenuReachesThePanel) {
    const std::string menu = openedMenu();

    for (const char* label :
         {"Tessarel 1.0.0", "Snap to Zone 1   \\(Ctrl\\+Alt\\+1\\)", "Arrange windows into zones",
          "Move window", "Left half   \\(Ctrl\\+Alt\\+Left\\)", "Layouts", "Halves", "Pause Tessarel",
          "Quit Tessarel"})
        EXPECT_THAT(menu, ContainsRegex("'label': <'" + std::string(label)));
    EXPECT_THAT(menu, Not(HasSubstr("Snap to Zone 6")));
}

TEST_F(MenuStatusNotifierTest, AShortcutOfAnotherProgramIsNotShownUntilItIsFree) {
    ASSERT_EQ(program->terminate(), 0);
    ASSERT_TRUE(keyboard.waitUntilNotHeld(hotkey::zone(1)));
    TestClient other{server};
    ASSERT_TRUE(other.grabKey(hotkey::zone(1)));
    program.emplace(environment);
    ASSERT_TRUE(program->waitUntilReady(observer, keyboard)) << program->errors();
    ASSERT_TRUE(observer.waitUntil(
        [&] { return openedMenu().find("'label': <'Snap to Zone 1'>") != std::string::npos; }));
    EXPECT_THAT(openedMenu(), HasSubstr("Snap to Zone 2   (Ctrl+Alt+2)"));

    other.ungrabKey(hotkey::zone(1));

    EXPECT_TRUE(observer.waitUntil(
        [&] { return openedMenu().find("Snap to Zone 1   (Ctrl+Alt+1)") != std::string::npos; }));
    EXPECT_TRUE(keyboard.held(hotkey::zone(1)));
}

TEST_F(MenuStatusNotifierTest, WithoutAWindowManagerTheMenuOffersTheReasonInTrueWords) {
    EXPECT_THAT(openedMenu(), Not(HasSubstr("windows cannot be moved")));

    manager.process().kill();

    EXPECT_TRUE(observer.waitUntil(
        [&] { return openedMenu().find("Why windows cannot be moved...") != std::string::npos; }));
    EXPECT_THAT(openedMenu(), Not(HasSubstr("Accessibility")));
}

TEST_F(MenuStatusNotifierTest, AnAppliedLayoutIsMarkedAtTheNextOpening) {
    EXPECT_TRUE(isMarked("3 top \\+ 2 bottom"));
    EXPECT_FALSE(isMarked("Halves"));

    ASSERT_TRUE(desktop.choose(openedMenu(), "Halves"));

    EXPECT_TRUE(observer.waitUntil([&] { return isMarked("Halves"); }));
    EXPECT_FALSE(isMarked("3 top \\+ 2 bottom"));
    EXPECT_THAT(openedMenu(), Not(HasSubstr("Snap to Zone 3")));
}

TEST_F(MenuStatusNotifierTest, PausingIsMarkedAndShowsInTheIcon) {
    const std::string icon = desktop.property("IconPixmap");
    ASSERT_NE(icon, "");

    ASSERT_TRUE(desktop.choose(openedMenu(), "Pause Tessarel"));

    EXPECT_TRUE(observer.waitUntil([&] { return isMarked("Pause Tessarel"); }));
    EXPECT_TRUE(observer.waitUntil([&] { return desktop.property("IconPixmap") != icon; }));
}

TEST_F(MenuStatusNotifierTest, AMoveFromTheMenuMovesTheActiveWindow) {
    TestClient client{server};
    const xcb_window_t window = client.open();
    ASSERT_TRUE(observer.waitUntil([&] { return observer.activeWindow() == window; }));
    ASSERT_TRUE(observer.settle());
    observer.watch(window);

    ASSERT_TRUE(desktop.choose(openedMenu(), "Left half   \\(Ctrl\\+Alt\\+Left\\)"));

    const Frame wanted = frameIn(observer.workArea().value_or(Frame{}), kLeftHalf);
    EXPECT_TRUE(observer.waitUntil([&] { return observer.outerFrame(window) == wanted; }))
        << observer.outerFrame(window).value_or(Frame{});
}

TEST_F(MenuStatusNotifierTest, CallsBeyondTheLimitGetAnErrorUntilTheyHaveStopped) {
    constexpr int kCalls = 5000;
    constexpr const char* kConnection = "flood";
    QDBusMessage readAll = QDBusMessage::createMethodCall(
        QString::fromStdString(desktop.item()), QStringLiteral("/StatusNotifierItem"),
        QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("GetAll"));
    readAll << QStringLiteral("org.kde.StatusNotifierItem");
    int refused = 0;
    {
        QDBusConnection flood =
            QDBusConnection::connectToBus(QString::fromStdString(bus.address()), kConnection);
        std::vector<QDBusPendingCall> calls;
        for (int i = 0; i < kCalls; ++i)
            calls.push_back(flood.asyncCall(readAll));
        for (QDBusPendingCall& call : calls) {
            call.waitForFinished();
            refused += call.error().type() == QDBusError::UnknownObject ? 1 : 0;
        }
    }
    QDBusConnection::disconnectFromBus(kConnection);

    EXPECT_GT(refused, 0);
    EXPECT_LT(refused, kCalls);
    EXPECT_TRUE(observer.waitUntil([&] { return !desktop.property("IconPixmap").empty(); }));
    EXPECT_THAT(openedMenu(), HasSubstr("Quit Tessarel"));
}

TEST_F(MenuStatusNotifierTest, QuitEndsTheProgramAndRemovesTheItem) {
    ASSERT_TRUE(desktop.choose(openedMenu(), "Quit Tessarel"));

    EXPECT_EQ(program->process().waitForExit(), 0);
    EXPECT_EQ(program->errors(), "");
    EXPECT_TRUE(keyboard.waitUntilNotHeld(hotkey::zone(1)));
    EXPECT_TRUE(observer.waitUntil([&] { return desktop.item().empty(); }));
}

} // namespace
} // namespace tessarel::x11test
