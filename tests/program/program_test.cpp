// SPDX-License-Identifier: MIT

#include "support/x11/program.h"

#include "support/scratch_folder.h"
#include "support/x11/child_process.h"
#include "support/x11/keyboard.h"
#include "support/x11/observer.h"
#include "support/x11/window_manager.h"
#include "support/x11/x_server.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <span>
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

namespace tessarel::x11test {
namespace {

using testing::HasSubstr;

MATCHER_P(IsOneLineOf, start, "is one line that starts with \"" + std::string(start) + "\"") {
    return arg.starts_with(start) && arg.find('\n') == arg.size() - 1;
}

constexpr const char* kSelection = "_TESSAREL_INSTANCE_S0";
constexpr Combination kFirstHotKey{key::kDigit1, kControlAlt};
constexpr Combination kLastHotKey{key::kA, kControlAlt};

/// Fixture: runs the whole program on an X server of its own.
class ProgramTest : public testing::Test {
protected:
    /// Starts the program as a user does, with the environment variables in `changed` replaced.
    [[nodiscard]] ChildProcess start(const Environment& changed = {}) {
        Environment environment = server.environment();
        environment["DBUS_SESSION_BUS_ADDRESS"] = "disabled:";
        for (const auto& [name, value] : changed)
            environment[name] = value;
        return ChildProcess({TESSAREL_PROGRAM}, environment, Alarm::Blocked);
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

    /// Takes the selection that the running copy owns, as another program might.
    void takeSelection() {
        xcb_connection_t* const x = observer.x().get();
        const xcb_window_t window = xcb_generate_id(x);
        xcb_create_window(x, XCB_COPY_FROM_PARENT, window, observer.root(), 0, 0, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
        xcb_set_selection_owner(x, window, observer.x().atom(kSelection), XCB_CURRENT_TIME);
        observer.x().roundTrip();
    }

    /// Returns whether two copies have marked their windows: one that owns the selection and one that waits
    /// for its reaction.
    [[nodiscard]] bool aSecondCopyWaits() {
        xcb_connection_t* const x = observer.x().get();
        const auto tree = own(xcb_query_tree_reply(x, xcb_query_tree(x, observer.root()), nullptr));
        const std::span windows(xcb_query_tree_children(tree.get()), tree->children_len);
        const auto isMarked = [&](xcb_window_t window) {
            const auto mark = own(xcb_get_property_reply(
                x, xcb_get_property(x, 0, window, observer.x().atom(kSelection), XCB_ATOM_CARDINAL, 0, 1),
                nullptr));
            return mark && mark->value_len == 1;
        };
        return std::ranges::count_if(windows, isMarked) == 2;
    }

    XServer server;
    Observer observer{server.display()};
    Keyboard keyboard{server, observer};
};

/// The arguments that need no display.
TEST(ProgramArgumentsTest, HelpAndVersionNeedNoDisplay) {
    for (const auto& [option, line] :
         {std::pair("--help", "Usage: tessarel [COMMAND]"), std::pair("-h", "Usage: tessarel [COMMAND]"),
          std::pair("--version", "tessarel " TESSAREL_EXPECTED_VERSION),
          std::pair("-v", "tessarel " TESSAREL_EXPECTED_VERSION)}) {
        ChildProcess program({TESSAREL_PROGRAM, option}, {});
        EXPECT_EQ(program.nextLine(), line);
        EXPECT_EQ(program.waitForExit(), 0) << option;
        EXPECT_EQ(program.errors(), "");
    }
}

TEST(ProgramArgumentsTest, UnknownWordsHaveNoSecondMeaning) {
    using Words = std::vector<std::string>;
    for (const auto& [words, problem] :
         {std::pair(Words{"--paws"}, R"(there is no option "paws")"),
          std::pair(Words{"zone-1", "-platform", "xcb"}, R"(there is no option "platform")"),
          std::pair(Words{"list", "zones", "--json=1"}, R"(there is no option "json=1")"),
          std::pair(Words{"--help=all"}, R"(there is no option "help=all")"),
          std::pair(Words{"zone-12"}, R"(there is no command "zone-12")"),
          std::pair(Words{"quit", "--json"}, "quit takes no further words")}) {
        Words arguments{TESSAREL_PROGRAM};
        arguments.insert(arguments.end(), words.begin(), words.end());
        ChildProcess program(arguments, {});
        EXPECT_EQ(program.waitForExit(), 2);
        EXPECT_EQ(program.errors(), "tessarel: " + std::string(problem) + "; see \"tessarel --help\"\n");
    }
}

TEST(ProgramArgumentsTest, TextThatCannotBePrintedIsReported) {
    for (const char* const option : {"--help", "--version"}) {
        // A device that takes nothing, like a full disk.
        ChildProcess program({"/bin/sh", "-c", "exec \"$0\" $1 > /dev/full", TESSAREL_PROGRAM, option}, {});
        EXPECT_EQ(program.waitForExit(), 1) << option;
        EXPECT_EQ(program.errors(), "tessarel: cannot write to the standard output\n");
    }
}

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

TEST_F(ManagedProgramTest, AFirstCopyThatDoesNotReactIsReportedInOneLine) {
    writeSettings(server, R"({"hasOnboarded": true})");
    ChildProcess first = start();
    ASSERT_TRUE(becomesReady(first));
    first.signal(SIGSTOP);

    ChildProcess second = start();

    EXPECT_EQ(second.waitForExit(), 1);
    EXPECT_EQ(second.errors(), "tessarel: the running copy (process " + std::to_string(first.pid()) +
                                   ") does not react; end it and start again\n");
    EXPECT_TRUE(keyboard.held(kFirstHotKey));
    first.signal(SIGCONT);
    first.signal(SIGTERM);
    EXPECT_EQ(first.waitForExit(), 0);
}

TEST_F(ManagedProgramTest, ACopyThatEndsDuringTheStartOfTheNextIsReplacedByIt) {
    writeSettings(server, R"({"hasOnboarded": true})");
    ChildProcess first = start();
    ASSERT_TRUE(becomesReady(first));
    first.signal(SIGSTOP);
    ChildProcess second = start();
    ASSERT_TRUE(observer.waitUntil([&] { return aSecondCopyWaits(); }));

    first.kill();

    EXPECT_TRUE(becomesReady(second)) << second.errors();
}

TEST_F(ManagedProgramTest, AnotherProgramThatOwnsTheSelectionIsReportedInOneLine) {
    takeSelection();

    ChildProcess program = start();

    EXPECT_EQ(program.waitForExit(), 1);
    EXPECT_EQ(program.errors(), "tessarel: another program owns the selection _TESSAREL_INSTANCE_S0\n");
    EXPECT_FALSE(keyboard.held(kFirstHotKey));
}

TEST_F(ManagedProgramTest, ACopyThatLosesTheSelectionEndsAsIfAskedToQuit) {
    writeSettings(server, R"({"hasOnboarded": true})");
    ChildProcess program = start();
    ASSERT_TRUE(becomesReady(program));

    takeSelection();

    EXPECT_EQ(program.waitForExit(), 0);
    EXPECT_EQ(program.errors(), "");
    EXPECT_TRUE(keyboard.waitUntilNotHeld(kFirstHotKey));
}

TEST_F(ManagedProgramTest, AKilledCopyDoesNotBlockTheNextOne) {
    ChildProcess killed = start();
    ASSERT_TRUE(becomesReady(killed));
    killed.kill();

    ChildProcess next = start();

    EXPECT_TRUE(becomesReady(next));
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

TEST_F(ProgramTest, APointerThatMovesAcrossTheDesktopDoesNotWakeTheProgram) {
    ChildProcess program = start();
    ASSERT_TRUE(showsAnAlert()); // of Qt, which selects these events on startup

    xcb_connection_t* const x = observer.x().get();
    const auto root =
        own(xcb_get_window_attributes_reply(x, xcb_get_window_attributes(x, observer.root()), nullptr));
    ASSERT_TRUE(root);
    EXPECT_EQ(root->all_event_masks & (XCB_EVENT_MASK_ENTER_WINDOW | XCB_EVENT_MASK_LEAVE_WINDOW), 0U);
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

TEST_F(ProgramTest, ACopyThatLosesTheSelectionDuringTheWelcomeEndsToo) {
    ChildProcess program = start();
    ASSERT_TRUE(becomesReady(program));
    ASSERT_TRUE(showsAnAlert());

    takeSelection();

    EXPECT_EQ(program.waitForExit(), 0);
    EXPECT_EQ(storedSettings(server), "");
}

TEST_F(ProgramTest, AWelcomeWithoutAPressedButtonComesAgain) {
    for (int round = 0; round < 2; ++round) {
        ChildProcess program = start();
        ASSERT_TRUE(becomesReady(program));
        ASSERT_TRUE(showsAnAlert()) << "at start " << round;

        program.signal(SIGTERM);

        EXPECT_EQ(program.waitForExit(), 0);
        EXPECT_EQ(storedSettings(server), "");
        ASSERT_TRUE(keyboard.waitUntilNotHeld(kLastHotKey));
    }
}

TEST_F(ProgramTest, WithoutHomeEverythingIsInTheHomeOfThePasswordDatabase) {
    const ScratchFolder home;
    const std::string users = home.path() / "passwd";
    ScratchFolder::write(users, "somebody:x:" + std::to_string(::getuid()) + ":" +
                                    std::to_string(::getgid()) + "::" + home.path().native() + ":/bin/sh\n");
    ChildProcess program = start({{"HOME", ""},
                                  {"XDG_CONFIG_HOME", ""},
                                  {"XDG_DATA_HOME", ""},
                                  {"LD_PRELOAD", "libnss_wrapper.so"},
                                  {"NSS_WRAPPER_PASSWD", users},
                                  {"NSS_WRAPPER_GROUP", "/etc/group"}});
    ASSERT_TRUE(becomesReady(program));
    ASSERT_TRUE(showsAnAlert());

    const auto settings = home.path() / ".config/tessarel" / settingsFile(server).filename();
    EXPECT_TRUE(observer.waitUntil([&] {
        keyboard.press({key::kReturn}); // as soon as the welcome has the keyboard
        return std::filesystem::exists(settings);
    }));

    EXPECT_EQ(storedSettings(server), "");
}

TEST_F(ProgramTest, AFileSizeLimitIsReportedInOneLineAndDoesNotEndTheProgram) {
    const std::string document = R"({"unknown": ")" + std::string(4'000, 'x') + "\"}";
    writeSettings(server, document);
    Environment environment = server.environment();
    environment["DBUS_SESSION_BUS_ADDRESS"] = "disabled:";
    // The limit has room for what the program reports, which goes to a file, too.
    ChildProcess program({"sh", "-c", "ulimit -f 1 && exec \"$0\"", TESSAREL_PROGRAM}, environment,
                         Alarm::Blocked);
    ASSERT_TRUE(becomesReady(program));
    ASSERT_TRUE(showsAnAlert());
    const std::string report =
        "tessarel: cannot save the settings in " + settingsFile(server).string() + '\n';

    EXPECT_TRUE(observer.waitUntil([&] {
        keyboard.press({key::kReturn}); // as soon as the welcome has the keyboard
        return program.errors() == report;
    })) << program.errors();

    program.signal(SIGTERM);
    EXPECT_EQ(program.waitForExit(), 0);
    EXPECT_EQ(program.errors(), report);
    EXPECT_EQ(storedSettings(server), document);
}

TEST_F(ProgramTest, ACopyOfARejectedDocumentIsReportedInOneLine) {
    writeSettings(server, "{");
    ChildProcess program = start();
    ASSERT_TRUE(becomesReady(program));
    ASSERT_TRUE(showsAnAlert());
    const std::string copy = settingsFile(server).string() + ".rejected";

    EXPECT_TRUE(observer.waitUntil([&] {
        keyboard.press({key::kReturn}); // as soon as the welcome has the keyboard
        return std::filesystem::exists(copy);
    }));

    program.signal(SIGTERM);
    EXPECT_EQ(program.waitForExit(), 0);
    EXPECT_EQ(program.errors(),
              "tessarel: the settings could not be read; a copy of them is in " + copy + '\n');
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

TEST_F(ProgramTest, InAWaylandSessionWithoutADisplayItSaysWhichSessionsItRunsIn) {
    ChildProcess program = start({{"DISPLAY", ""}, {"WAYLAND_DISPLAY", "wayland-4711"}});

    EXPECT_EQ(program.waitForExit(), 1);
    EXPECT_THAT(program.errors(), HasSubstr(" Log in to an X11 session or to KDE Plasma.\n"));
}

} // namespace
} // namespace tessarel::x11test
