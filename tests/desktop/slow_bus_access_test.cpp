// SPDX-License-Identifier: MIT

#include "desktop/screen_reader.h"
#include "support/x11/keyboard.h"
#include "support/x11/observer.h"
#include "support/x11/program.h"
#include "support/x11/window_manager.h"
#include "support/x11/x_server.h"

#include <gtest/gtest.h>

#include <csignal>
#include <optional>

namespace tessarel::x11test {
namespace {

/// Fixture: the running program on a bus that is stopped meanwhile, and a screen reader.
class SlowBusAccessTest : public testing::Test {
protected:
    SlowBusAccessTest() { writeSettings(server, R"({"hasOnboarded":true})"); }

    void start() {
        program.emplace(reader.environment());
        ASSERT_TRUE(program->waitUntilReady(observer, keyboard)) << program->errors();
    }

    void expectReadableSettings() {
        ASSERT_TRUE(observer.waitUntil([&] { return reader.knows("Tessarel"); })) << program->errors();
        EXPECT_NE(openSettingsWindow(observer, reader.environment()), xcb_window_t{XCB_WINDOW_NONE});
        EXPECT_TRUE(
            observer.waitUntil([&] { return reader.find("Tessarel", "page tab", "Layouts").has_value(); }));
        EXPECT_EQ(program->terminate(), 0);
    }

    XServer server;
    WindowManager manager{server, WindowManagerKind::Openbox};
    Observer observer{server.display()};
    Keyboard keyboard{server, observer};
    ScreenReader reader{server.environment()};
    std::optional<Program> program;
};

TEST_F(SlowBusAccessTest, AScreenReaderReadsTheWindowThoughTheBusHasRepliedLate) {
    reader.signalSessionBus(SIGSTOP);
    start();

    reader.signalSessionBus(SIGCONT);

    expectReadableSettings();
}

TEST_F(SlowBusAccessTest, AScreenReaderReadsTheWindowThoughTheAccessibilityBusHasRepliedLate) {
    reader.signalAccessibilityBus(SIGSTOP);
    start();

    reader.signalAccessibilityBus(SIGCONT); // soon: the program waits for up to five seconds

    expectReadableSettings();
}

} // namespace
} // namespace tessarel::x11test
