// SPDX-License-Identifier: MIT

#include "desktop/desktop.h"
#include "desktop/expected.h"
#include "support/x11/child_process.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstddef>
#include <string>
#include <vector>

namespace tessarel::x11test {
namespace {

/// A running copy that other processes send commands.
class CommandLineTest : public testing::Test {
protected:
    struct Result {
        int exitCode = -1;
        std::string output; ///< the first line
        std::string errors;
    };

    CommandLineTest() { EXPECT_TRUE(desktop.startForCommands()); }

    /// Runs the launcher with these words, as users do, and waits until it has exited.
    [[nodiscard]] Result run(const std::vector<std::string>& words,
                             const std::string& program = TESSAREL_LAUNCHER) {
        std::vector<std::string> arguments{program};
        arguments.insert(arguments.end(), words.begin(), words.end());
        ChildProcess process(arguments, desktop.server().environment());
        Result result;
        result.output = process.nextLine().value_or("");
        result.exitCode = process.waitForExit().value_or(-1);
        result.errors = process.errors();
        return result;
    }

    Frame zoneFrame(int number) {
        return frameIn(desktop.usableArea(), kZones.at(static_cast<std::size_t>(number - 1)));
    }

    Desktop desktop{{}};
    TestClient client{desktop.server()};
};

TEST_F(CommandLineTest, ACommandReturnsWhenTheWindowIsInItsZone) {
    const xcb_window_t window = desktop.open(client);

    for (const int number : {2, 4}) {
        const Result result = run({"zone-" + std::to_string(number)});

        EXPECT_EQ(desktop.frame(window), zoneFrame(number));
        EXPECT_EQ(result.exitCode, 0) << result.errors;
        EXPECT_EQ(result.output + result.errors, "");
    }
}

TEST_F(CommandLineTest, TheProgramItselfSendsCommandsToo) {
    const xcb_window_t window = desktop.open(client);

    const Result result = run({"zone-2"}, TESSAREL_PROGRAM);

    EXPECT_EQ(desktop.frame(window), zoneFrame(2));
    EXPECT_EQ(result.exitCode, 0) << result.errors;
}

TEST_F(CommandLineTest, TheLauncherLeavesEverythingElseToTheProgram) {
    EXPECT_TRUE(run({"--version"}).output.starts_with("tessarel "));
    EXPECT_EQ(run({"--nonsense"}).errors,
              "tessarel: there is no option \"nonsense\"; see \"tessarel --help\"\n");
    EXPECT_EQ(run({"zone-1", "--nonsense"}).exitCode, 2);
    EXPECT_EQ(run({"--json", "list", "zones"}).exitCode, 0);
    EXPECT_EQ(run({"layout", "\xC3\xA4"}).exitCode, 4) << "a layout that does not exist";
}

TEST_F(CommandLineTest, AListThatCannotBePrintedIsReported) {
    const std::string intoFullDisk = "exec '" TESSAREL_LAUNCHER "' list zones > /dev/full";

    const Result result = run({"-c", intoFullDisk}, "/bin/sh");

    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.errors, "tessarel: cannot write to the standard output\n");
}

TEST_F(CommandLineTest, ACommandThatDoesNothingSaysWhy) {
    static_cast<void>(desktop.open(client));

    const Result result = run({"restore"});

    EXPECT_EQ(result.exitCode, 4);
    EXPECT_EQ(result.errors, "tessarel: the window has not been placed\n");
}

TEST_F(CommandLineTest, APauseStopsTheHotKeysUntilItEnds) {
    const xcb_window_t window = desktop.open(client);
    const Frame before = desktop.frame(window);

    EXPECT_EQ(run({"pause", "on"}).exitCode, 0);
    desktop.press(hotkey::zone(2));
    EXPECT_TRUE(desktop.waitUntilProgramRests());
    EXPECT_EQ(desktop.frame(window), before);

    EXPECT_EQ(run({"pause", "off"}).exitCode, 0);
    desktop.press(hotkey::zone(2));
    EXPECT_EQ(desktop.settledFrame(window, zoneFrame(2)), zoneFrame(2));
}

TEST_F(CommandLineTest, ALayoutIsUsedAndListed) {
    EXPECT_EQ(run({"layout", "Halves"}).exitCode, 0);

    EXPECT_EQ(run({"list", "zones"}).output, "1\tleft 0 %, top 0 %, width 50 %, height 100 %");
    EXPECT_TRUE(run({"list", "layouts", "--json"}).output.starts_with("[{"));
}

TEST_F(CommandLineTest, QuitEndsTheCopyAndThenNoneRuns) {
    EXPECT_EQ(run({"quit"}).exitCode, 0);
    EXPECT_EQ(desktop.program().process().waitForExit(), 0);

    const Result result = run({"zone-1"});

    EXPECT_EQ(result.exitCode, 3);
    EXPECT_EQ(result.errors, "tessarel: Tessarel does not run on this display\n");
}

TEST_F(CommandLineTest, AfterACrashNoCopyRuns) {
    desktop.program().process().signal(SIGKILL);
    ASSERT_TRUE(desktop.program().process().waitForExit());

    EXPECT_EQ(run({"zone-1"}).exitCode, 3);
}

TEST_F(CommandLineTest, AStoppedCopyDoesNotAnswer) {
    const auto hold = desktop.program().hold();

    const Result result = run({"zone-1"});

    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.errors, "tessarel: Tessarel does not answer\n");
}

} // namespace
} // namespace tessarel::x11test
