// SPDX-License-Identifier: MIT

#include "desktop/screen_reader.h"
#include "desktop/tray_desktop.h"
#include "support/x11/child_process.h"
#include "support/x11/keyboard.h"
#include "support/x11/mouse.h"
#include "support/x11/observer.h"
#include "support/x11/program.h"
#include "support/x11/window_manager.h"
#include "support/x11/x_server.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string>

namespace tessarel::x11test {
namespace {

/// The first start of the program, read by a screen reader.
class WelcomeTest : public testing::Test {
protected:
    /// `managersKeys` is whether the window manager keeps the keys that it grabs by default.
    explicit WelcomeTest(OwnKeys managersKeys = OwnKeys::Dropped)
        : manager(server, WindowManagerKind::Openbox, managersKeys) {}

    /// Starts the program and returns the text of its welcome; empty if it does not appear.
    std::string welcome() {
        program = std::make_unique<Program>(reader.environment());
        std::string text;
        const auto isFound = [&] {
            const auto parts = reader.read("Tessarel");
            const auto found = std::ranges::find_if(parts, [](const Accessible& part) {
                return part.name.find("to snap the front window") != std::string::npos;
            });
            text = found == parts.end() ? "" : found->name;
            return found != parts.end();
        };
        EXPECT_TRUE(observer.waitUntil(isFound)) << program->errors();
        return text;
    }

    XServer server;
    WindowManager manager;
    Observer observer{server.display()};
    Mouse mouse{observer};
    ScreenReader reader{server.environment()};
    std::unique_ptr<Program> program;
};

TEST_F(WelcomeTest, NamesTheIconWhereAPanelShowsIt) {
    const auto panel = startTint2(server, server.environment());
    ASSERT_TRUE(observer.waitUntil(
        [&] { return observer.selectionOwner("_NET_SYSTEM_TRAY_S0") != xcb_window_t{XCB_WINDOW_NONE}; }));

    const std::string text = welcome();

    EXPECT_NE(text.find("Click the icon in the panel, then Settings"), std::string::npos) << text;
    EXPECT_EQ(program->terminate(), 0);
}

TEST_F(WelcomeTest, WithoutATrayItSaysHowElseToOpenTheSettings) {
    const std::string text = welcome();

    EXPECT_EQ(text.find("icon"), std::string::npos) << text;
    EXPECT_NE(text.find("Start Tessarel again to open Settings"), std::string::npos) << text;
    EXPECT_NE(text.find("The zones appear as outlines, because no compositor runs."), std::string::npos)
        << text;
    // Otherwise the welcome may become active after the settings.
    EXPECT_TRUE(observer.waitUntil([&] { return observer.activeWindow() != xcb_window_t{XCB_WINDOW_NONE}; }));
    EXPECT_NE(openSettingsWindow(observer, reader.environment()), xcb_window_t{XCB_WINDOW_NONE});
    EXPECT_EQ(program->terminate(), 0);
}

TEST_F(WelcomeTest, WithACompositorItDoesNotSpeakOfOutlines) {
    const ChildProcess compositor({"picom", "--backend", "xrender", "--config", "/dev/null"},
                                  server.environment());
    ASSERT_TRUE(
        observer.waitUntil([&] { return observer.selectionOwner("_NET_WM_CM_S0") != XCB_WINDOW_NONE; }));

    const std::string text = welcome();

    EXPECT_EQ(text.find("outlines"), std::string::npos) << text;
    EXPECT_EQ(program->terminate(), 0);
}

TEST_F(WelcomeTest, WhileItStandsTheSettingsCanBeUsed) {
    welcome();
    ASSERT_NE(openSettingsWindow(observer, reader.environment()), xcb_window_t{XCB_WINDOW_NONE});
    const auto waitFor = [&](const char* role, const char* name) {
        std::optional<Accessible> part;
        EXPECT_TRUE(observer.waitUntil([&] {
            part = reader.find("Tessarel", role, name);
            return part.has_value();
        })) << name;
        return part.value_or(Accessible{});
    };

    mouse.clickCentre(waitFor("page tab", "General").frame, Mouse::kLeft);
    mouse.clickCentre(waitFor("check box", "Reopen apps in their last zone").frame, Mouse::kLeft);

    EXPECT_TRUE(waitUntilStored(observer, server, R"("rememberApps":false)"));
    EXPECT_EQ(storedSettings(server).find(R"("hasOnboarded":true)"), std::string::npos);
    EXPECT_EQ(program->terminate(), 0);
}

/// The window manager has the four arrow keys.
class WelcomeBesideOtherKeysTest : public WelcomeTest {
protected:
    WelcomeBesideOtherKeysTest() : WelcomeTest(OwnKeys::Kept) {}
};

TEST_F(WelcomeBesideOtherKeysTest, ItsLastSentenceNamesTheKeysOfTheWindowManager) {
    const std::string text = welcome();

    EXPECT_TRUE(
        text.ends_with(" Ctrl+Alt+Left, Ctrl+Alt+Right, Ctrl+Alt+Up and Ctrl+Alt+Down belong to another "
                       "program already; choose other shortcuts in Settings."))
        << text;
    EXPECT_EQ(program->terminate(), 0);
}

} // namespace
} // namespace tessarel::x11test
