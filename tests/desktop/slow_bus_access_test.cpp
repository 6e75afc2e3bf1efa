// SPDX-License-Identifier: MIT

#include "desktop/screen_reader.h"
#include "support/x11/keyboard.h"
#include "support/x11/observer.h"
#include "support/x11/program.h"
#include "support/x11/window_manager.h"
#include "support/x11/x_server.h"

#include <gtest/gtest.h>

#include <csignal>

namespace tessarel::x11test {
namespace {

TEST(SlowBusAccessTest, AScreenReaderReadsTheWindowThoughTheBusHasRepliedLate) {
    XServer server;
    const WindowManager manager(server, WindowManagerKind::Openbox);
    Observer observer(server.display());
    Keyboard keyboard(server, observer);
    const ScreenReader reader(server.environment());
    writeSettings(server, R"({"hasOnboarded":true})");
    reader.signalSessionBus(SIGSTOP);
    Program program(reader.environment());
    ASSERT_TRUE(program.waitUntilReady(observer, keyboard)) << program.errors();

    reader.signalSessionBus(SIGCONT);

    ASSERT_TRUE(observer.waitUntil([&] { return reader.knows("Tessarel"); })) << program.errors();
    EXPECT_NE(openSettingsWindow(observer, reader.environment()), xcb_window_t{XCB_WINDOW_NONE});
    EXPECT_TRUE(
        observer.waitUntil([&] { return reader.find("Tessarel", "page tab", "Layouts").has_value(); }));
    EXPECT_EQ(program.terminate(), 0);
}

} // namespace
} // namespace tessarel::x11test
