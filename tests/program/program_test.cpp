#include "support/x11/program.h"

#include "support/x11/child_process.h"
#include "support/x11/keyboard.h"
#include "support/x11/observer.h"
#include "support/x11/window_manager.h"
#include "support/x11/x_server.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <span>
#include <string>
#include <vector>

namespace tessarel::x11test {
namespace {

using testing::HasSubstr;

MATCHER_P(IsOneLineOf, start, "is one line that starts with \"" + std::string(start) + "\"") {
    return arg.starts_with(start) && arg.find('\n') == arg.size() - 1;
}

constexpr Combination kFirstHotKey{key::kDigit1, kControlAlt};
constexpr Combination kLastHotKey{key::kA, kControlAlt};

/// Fixture: runs the whole program on an X server of its own.
class ProgramTest : public testing::Test {
protected:
    /// Starts the program as a user does, with the arguments `options` and with the environment variables in
    /// `changed` replaced.
    [[nodiscard]] ChildProcess start(const Environment& changed = {},
                                     const std::vector<std::string>& options = {}) {
        Environment environment = server.environment();
        environment["DBUS_SESSION_BUS_ADDRESS"] = "disabled:";
        for (const auto& [name, value] : changed)
            environment[name] = value;
        std::vector<std::string> arguments{TESSAREL_PROGRAM};
        arguments.insert(arguments.end(), options.begin(), options.end());
        return ChildProcess(arguments, environment);
    }

    [[nodiscard]] bool becomesReady(ChildProcess& program) {
        return observer.waitUntil([&] { return !program.running() || keyboard.held(kLastHotKey); }) &&
               program.running();
    }

    /// Waits for a visible window and returns whether one appears in time. Without a window manager only the
    /// program opens one.
    [[nodiscard]] bool showsAnAlert() {
        xcb_connection_t* const x = observer.x().get();
        return observer.waitUntil([&] {
            const auto tree = own(xcb_query_tree_reply(x, xcb_query_tree(x, observer.root()), nullptr));
            const std::span windows(xcb_query_tree_children(tree.get()), tree->children_len);
            return std::ranges::any_of(windows, [&](xcb_window_t window) {
                const auto attributes =
                    own(xcb_get_window_attributes_reply(x, xcb_get_window_attributes(x, window), nullptr));
                return attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
            });
        });
    }

    XServer server;
    Observer observer{server.display()};
    Keyboard keyboard{server, observer};
};

/// Fixture: with a window manager, so that the program has nothing to warn about.
class ManagedProgramTest : public ProgramTest {
protected:
    WindowManager manager{server, WindowManagerKind::Openbox};
};

class ProgramSignalTest : public ManagedProgramTest, public testing::WithParamInterface<int> {};

TEST_P(ProgramSignalTest, EndsTheProgramCleanlyAndReleasesTheHotKeys) {
    const std::string document = R"({"gap": 8, "hasOnboarded": true, "unknown": true})";
    writeSettings(server, document);
    ChildProcess program = start();
    ASSERT_TRUE(becomesReady(program));

    program.signal(GetParam());

    EXPECT_EQ(program.waitForExit(), 0);
    EXPECT_EQ(program.errors(), "");
    EXPECT_TRUE(keyboard.waitUntilNotHeld(kFirstHotKey));
    EXPECT_EQ(storedSettings(server), document);
}

INSTANTIATE_TEST_SUITE_P(All, ProgramSignalTest, testing::Values(SIGTERM, SIGINT, SIGHUP));

TEST_F(ManagedProgramTest, ASecondCopyEndsAtOnceAndLeavesTheFirstAlone) {
    ChildProcess first = start();
    ASSERT_TRUE(becomesReady(first));

    ChildProcess second = start();

    EXPECT_EQ(second.waitForExit(), 0);
    EXPECT_EQ(second.errors(), "");
    EXPECT_TRUE(first.running());
    EXPECT_TRUE(keyboard.held(kFirstHotKey));
}

TEST_F(ManagedProgramTest, AKilledCopyDoesNotBlockTheNextOne) {
    ChildProcess killed = start();
    ASSERT_TRUE(becomesReady(killed));
    killed.kill();

    ChildProcess next = start();

    EXPECT_TRUE(becomesReady(next));
}

TEST_F(ManagedProgramTest, IgnoresCommandLineOptions) {
    ChildProcess program = start({}, {"-platform", "offscreen", "--help", "-display", ":4711"});

    EXPECT_TRUE(becomesReady(program));
    program.signal(SIGTERM);
    EXPECT_EQ(program.waitForExit(), 0);
    EXPECT_EQ(program.errors(), "");
}

TEST_F(ManagedProgramTest, RunsOnX11WhateverQtPlatformTheEnvironmentNames) {
    ChildProcess program = start({{"QT_QPA_PLATFORM", "offscreen"}, {"QT_QPA_PLATFORMTHEME", "none"}});

    EXPECT_TRUE(becomesReady(program));
    program.signal(SIGTERM);
    EXPECT_EQ(program.waitForExit(), 0);
}

TEST_F(ManagedProgramTest, AWaylandSessionIsReportedInOneLine) {
    server.setMonitors({{.name = "XWAYLAND0", .x = 0, .y = 0, .width = 800, .height = 600, .primary = true}});
    ChildProcess program = start({{"XDG_SESSION_TYPE", "wayland"}});
    ASSERT_TRUE(becomesReady(program));

    program.signal(SIGTERM);

    EXPECT_EQ(program.waitForExit(), 0);
    EXPECT_THAT(program.errors(), IsOneLineOf("tessarel: this is a Wayland session"));
}

TEST_F(ProgramTest, LosingTheXServerEndsTheProgramWithOneLine) {
    ChildProcess program = start();
    ASSERT_TRUE(becomesReady(program));
    ASSERT_TRUE(showsAnAlert()); // so its event loop runs

    server.kill();

    EXPECT_EQ(program.waitForExit(), 1);
    EXPECT_EQ(program.errors(), "tessarel: lost the connection to the X display\n");
}

TEST_F(ProgramTest, AnOpenAlertDoesNotPreventTermination) {
    ChildProcess program = start();
    ASSERT_TRUE(becomesReady(program));
    ASSERT_TRUE(showsAnAlert());

    program.signal(SIGTERM);

    EXPECT_EQ(program.waitForExit(), 0);
    EXPECT_TRUE(keyboard.waitUntilNotHeld(kFirstHotKey));
}

TEST_F(ProgramTest, AnUnreachableDisplayIsReportedInOneLine) {
    ChildProcess program = start({{"DISPLAY", ":4711"}});

    EXPECT_EQ(program.waitForExit(), 1);
    EXPECT_THAT(program.errors(), IsOneLineOf("tessarel: cannot open the X display: "));
    EXPECT_THAT(program.errors(), HasSubstr(":4711"));
}

TEST_F(ProgramTest, AMissingDisplayIsReportedInOneLine) {
    ChildProcess program = start({{"DISPLAY", ""}});

    EXPECT_EQ(program.waitForExit(), 1);
    EXPECT_THAT(program.errors(), IsOneLineOf("tessarel: cannot open the X display: "));
}

} // namespace
} // namespace tessarel::x11test
