// SPDX-License-Identifier: MIT

#include "desktop/desktop.h"
#include "desktop/status_notifier_panel.h"
#include "desktop/tray_desktop.h"
#include "support/x11/mouse.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessarel::x11test {
namespace {

constexpr const char* kTitle = "Tessarel Settings";

/// The user works in another program and then asks for the settings window.
class SettingsFrontTest : public testing::TestWithParam<WindowManagerKind> {
protected:
    explicit SettingsFrontTest(std::string_view settings = kNoHomes) {
        writeSettings(server, settings);
        EXPECT_TRUE(observer.waitUntil([&] { return tray.isThere(); })) << panel->errors();
        program.emplace(environment);
        EXPECT_TRUE(program->waitUntilReady(observer, keyboard)) << program->errors();
        EXPECT_TRUE(observer.waitUntil([&] { return !tray.item().empty(); })) << "no status item";
        observer.sendToRoot(observer.root(), "_NET_NUMBER_OF_DESKTOPS", {4});
    }
    void SetUp() override {
        other = client.open({.client = {60, 60, 1400, 700}});
        EXPECT_TRUE(observer.waitUntil([&] { return observer.activeWindow() == other; }));
    }
    ~SettingsFrontTest() override { EXPECT_EQ(program->terminate(), 0) << program->errors(); }

    /// The user clicks into the other program's window, which covers everything, and types.
    void workElsewhere() {
        observer.activate(other);
        ASSERT_TRUE(observer.waitUntil([&] { return observer.activeWindow() == other; }));
        ASSERT_TRUE(observer.settle());
        mouse.moveTo(760, 410);
        ASSERT_TRUE(observer.waitUntil([&] { return observer.isUnderPointer(other); }));
        mouse.click();
        keyboard.press({key::kA, 0});
        // As toolkits do, the program tells the window manager when it was used last.
        client.setCardinals(other, "_NET_WM_USER_TIME", {serverTime()});
        ASSERT_TRUE(observer.settle());
    }

    /// Returns the time as the X server counts it: in milliseconds of the system's monotonic clock.
    static std::uint32_t serverTime() {
        const auto now = std::chrono::steady_clock::now().time_since_epoch();
        return static_cast<std::uint32_t>(std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
    }

    void secondStart() {
        Program second(environment);
        EXPECT_EQ(second.process().waitForExit(), 0);
    }
    void chooseInTray() {
        tray.aboutToShowMenu();
        EXPECT_TRUE(tray.choose(tray.menu(), "Settings..."));
    }

    [[nodiscard]] std::uint32_t desktopShown() {
        return observer.values(observer.root(), "_NET_CURRENT_DESKTOP").at(0);
    }
    void showDesktop(std::uint32_t number) {
        observer.sendToRoot(observer.root(), "_NET_CURRENT_DESKTOP", {number});
        ASSERT_TRUE(observer.waitUntil([&] { return desktopShown() == number; }));
    }

    [[nodiscard]] xcb_window_t find(std::string_view title = kTitle) {
        for (const xcb_window_t window : observer.clients())
            if (observer.text(window, "_NET_WM_NAME") == title)
                return window;
        return XCB_WINDOW_NONE;
    }

    /// Returns what is wrong with the settings window for a user who looks at `desktop`; empty if nothing is.
    std::string whatIsWrong(std::uint32_t desktop) {
        const xcb_window_t window = find();
        if (window == XCB_WINDOW_NONE)
            return "there is no window";
        observer.watch(window);
        const Frame frame = observer.clientFrame(window).value_or(Frame{});
        mouse.moveTo(frame.x + frame.width / 2, frame.y + frame.height / 2);
        const auto place = observer.values(window, "_NET_WM_DESKTOP");
        if (desktopShown() != desktop)
            return "another desktop is shown";
        if (!place.empty() && place[0] != desktop)
            return "it is on another desktop";
        if (observer.hasState(window, "_NET_WM_STATE_HIDDEN"))
            return "it is minimised";
        if (observer.activeWindow() != window)
            return "it is not active";
        return observer.isUnderPointer(window) ? "" : "it is behind a window";
    }

    /// Asks for the settings window, and waits until it is where the user looks, and stays there.
    void askAndExpectItOn(std::uint32_t desktop, const std::function<void()>& ask) {
        ASSERT_NO_FATAL_FAILURE(workElsewhere());
        ask();
        std::string wrong;
        const auto isRight = [&] {
            wrong = whatIsWrong(desktop);
            return wrong.empty();
        };
        EXPECT_TRUE(observer.waitUntil([&] {
            return isRight() && observer.settleProgram(find()) && isRight();
        })) << wrong;
    }

    void minimise() {
        observer.iconify(find());
        ASSERT_TRUE(observer.waitUntil([&] { return observer.hasState(find(), "_NET_WM_STATE_HIDDEN"); }));
    }

    /// The user goes to another desktop and takes the other program's window along.
    void moveTo(std::uint32_t desktop) {
        observer.sendToRoot(other, "_NET_WM_DESKTOP", {desktop, 2});
        ASSERT_TRUE(observer.waitUntil(
            [&] { return observer.values(other, "_NET_WM_DESKTOP") == std::vector{desktop}; }));
        ASSERT_NO_FATAL_FAILURE(showDesktop(desktop));
    }

    void close() {
        observer.sendToRoot(find(), "_NET_CLOSE_WINDOW", {XCB_CURRENT_TIME, 2});
        ASSERT_TRUE(observer.waitUntil([&] { return find() == XCB_WINDOW_NONE; }));
    }

    void expectItComesFromEverywhere(const std::function<void()>& ask) {
        const std::uint32_t first = desktopShown();
        const std::uint32_t second = first + 1;
        const auto nowhere = [] {};
        const std::vector<Whereabouts> all = {
            {"for the first time", nowhere, first},
            {"behind another window", nowhere, first},
            {"minimised", [this] { minimise(); }, first},
            {"on another desktop", [&] { moveTo(second); }, second},
            {"minimised on another desktop",
             [&] {
                 minimise();
                 moveTo(first);
             },
             first},
            {"closed", [this] { close(); }, first},
            {"closed on another desktop",
             [&] {
                 close();
                 moveTo(second);
             },
             second},
        };
        for (const Whereabouts& one : all) {
            SCOPED_TRACE(one.name);
            ASSERT_NO_FATAL_FAILURE(one.prepare());
            ASSERT_NO_FATAL_FAILURE(askAndExpectItOn(one.desktop, ask));
        }
    }

    XServer server{serverFor(GetParam())};
    DesktopBus bus{server.environment()};
    Environment environment = bus.environmentOn(server);
    WindowManager manager{server, GetParam()};
    Observer observer{server.display()};
    Keyboard keyboard{server, observer};
    Mouse mouse{observer};
    StatusNotifierPanel tray{environment};
    std::unique_ptr<ChildProcess> panel = startXfce4Panel(server, environment);
    TestClient client{server};
    std::optional<Program> program;
    xcb_window_t other = XCB_WINDOW_NONE;

private:
    /// Where the settings window is before the user asks for it.
    struct Whereabouts {
        const char* name;
        std::function<void()> prepare;
        std::uint32_t desktop; ///< where the user is then
    };
};

/// All but pekwm, which lists a window only when another one opens.
std::vector<WindowManagerKind> listingManagers() {
    std::vector<WindowManagerKind> managers(kAllWindowManagers.begin(), kAllWindowManagers.end());
    std::erase(managers, WindowManagerKind::Pekwm);
    return managers;
}

INSTANTIATE_TEST_SUITE_P(, SettingsFrontTest, testing::ValuesIn(listingManagers()),
                         [](const auto& manager) { return std::string(name(manager.param)); });

TEST_P(SettingsFrontTest, ASecondStartBringsTheWindowToTheUser) {
    expectItComesFromEverywhere([this] { secondStart(); });
}

TEST_P(SettingsFrontTest, TheStatusItemBringsTheWindowToTheUser) {
    expectItComesFromEverywhere([this] { chooseInTray(); });
}

/// The first start: the welcome stands.
class SettingsBesideTheWelcomeTest : public SettingsFrontTest {
protected:
    SettingsBesideTheWelcomeTest() : SettingsFrontTest(R"({"rememberApps":false})") {}

    void SetUp() override {
        ASSERT_TRUE(observer.waitUntil([&] { return find("Tessarel") != XCB_WINDOW_NONE; }));
        // It raises itself once more after it has appeared.
        ASSERT_TRUE(observer.settleProgram(find("Tessarel")));
        SettingsFrontTest::SetUp();
    }
};

INSTANTIATE_TEST_SUITE_P(, SettingsBesideTheWelcomeTest, testing::ValuesIn(listingManagers()),
                         [](const auto& manager) { return std::string(name(manager.param)); });

TEST_P(SettingsBesideTheWelcomeTest, ASecondStartBringsTheWindowInFrontOfTheWelcome) {
    askAndExpectItOn(desktopShown(), [this] { secondStart(); });

    EXPECT_NE(find("Tessarel"), xcb_window_t{XCB_WINDOW_NONE});
}

} // namespace
} // namespace tessarel::x11test
