// SPDX-License-Identifier: MIT

#include "desktop/plasma/script_run.h"
#include "platform/plasma/keys/global_shortcuts.h"
#include "platform/plasma/scripts.h"
#include "platform/wayland/bus_names.h"
#include "support/hanging_bus.h"
#include "support/plasma/plasma_session.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <sys/types.h>
#include <vector>

namespace tessarel::plasmatest {
namespace {

constexpr Rect kRightHalf{800, 0, 800, 900};
constexpr const char* kUsualSettings = R"({"hasOnboarded":true,"rememberApps":false})";
constexpr int kNothingDone = 4;

/// Returns the environment that a process, or the program that has replaced it, was started with.
std::string environmentOf(pid_t process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/environ");
    std::string text(std::istreambuf_iterator<char>(file), {});
    std::ranges::replace(text, '\0', '\n');
    return text;
}

class PlasmaFaultsTest : public testing::Test {
protected:
    explicit PlasmaFaultsTest(Extra extra = Extra::None)
        : session(Drawing::Software, PlasmaSession::kFirst.size(), extra) {
        session.writeSettings(kUsualSettings);
    }

    void start() { ASSERT_TRUE(session.startProgram()) << session.program().errors(); }

    /// Makes a folder in the place of the script, which cannot be written then.
    void occupyScript() {
        std::filesystem::create_directory(std::filesystem::path(session.environment().at("XDG_RUNTIME_DIR")) /
                                          "tessarel-bridge.js");
    }

    /// Waits until the program has an active window, or none. Returns false if that does not happen.
    bool waitForOwnWindow(bool isWanted) {
        return session.probe().waitUntil([&] {
            const auto isOwn = [this](const SeenWindow& window) {
                return window.pid == session.program().pid() && window.isActive;
            };
            return std::ranges::any_of(session.probe().windows(), isOwn) == isWanted;
        });
    }

    /// Returns the number of the program's windows once it has shown and closed all that it wants to.
    std::ptrdiff_t ownWindows() {
        EXPECT_EQ(session.command({"list", "displays"}), 0);
        session.probe().roundTrip();
        return std::ranges::count(session.probe().windows(), session.program().pid(), &SeenWindow::pid);
    }

    void restartCompositor() {
        session.killCompositor();
        session.startCompositor();
    }

    /// Expects that a hot key moves a new window, and that the program ends in order.
    void expectHotKeysWork() {
        ASSERT_TRUE(session.waitForCommands()) << session.program().errors();
        session.openEditor();
        session.input().press({key::kLeftControl, key::kLeftAlt, key::kRight});
        EXPECT_EQ(session.settledFrame(kEditor, kRightHalf), kRightHalf);
        EXPECT_EQ(session.endProgram(), 0) << session.program().errors();
        EXPECT_TRUE(session.shortcuts().empty());
    }

    PlasmaSession session;
};

/// The script in KWin, with the test in the place of the program.
class PlasmaScriptTest : public testing::Test {
protected:
    /// Runs the script, which renews its call for commands after that many milliseconds.
    void run(const std::string& renewal) { run(renewal, link.uniqueName(), kBridge); }
    void run(const std::string& renewal, const std::string& service, const std::string& path) {
        std::string script = plasma::kBridgeScript;
        const auto fill = [&script](const std::string& placeholder, const std::string& value) {
            script.replace(script.find(placeholder), placeholder.size(), value);
        };
        fill("@SERVICE@", service);
        fill(kBridge, path);
        fill("@PID@", "1");
        fill("renewal.interval = 20000;", "renewal.interval = " + renewal + ";");
        session.probe().run(script);
    }
    /// Collects the calls for commands that arrive at this path, until the returned subscription is
    /// destroyed.
    [[nodiscard]] SubscriptionPtr collect(const std::string& path, std::vector<std::uint64_t>& calls) {
        return link.serve(
            path,
            [&calls](const wayland::BusMessage& call) {
                if (call.member == "next")
                    calls.push_back(call.token);
            },
            wayland::BusLink::Delivery::Urgent);
    }
    bool waitForCalls(std::size_t count) {
        return session.probe().waitUntil([&] { return waiting.size() >= count; });
    }
    /// Waits until the script has renewed its call so many times.
    bool waitForRenewals(std::size_t count) { return waitForCalls(waiting.size() + count); }

    PlasmaSession session;
    wayland::BusLink& link = session.probe().link();
    std::vector<std::uint64_t> waiting; ///< the tokens of the script's calls for commands

private:
    static constexpr const char* kBridge = "/org/tessarel/Bridge";
    SubscriptionPtr m_calls = collect(kBridge, waiting);
};

class PlasmaLockTest : public PlasmaFaultsTest {
protected:
    PlasmaLockTest() : PlasmaFaultsTest(Extra::ScreenLocker) {}
};

TEST_F(PlasmaFaultsTest, WhenTheCompositorHasCrashedAndRunsAgainTheHotKeysDoSoToo) {
    start();

    restartCompositor();

    expectHotKeysWork();
}

TEST_F(PlasmaFaultsTest, TheCompositorMayCrashBeforeTheProgramHasConnectedToIt) {
    session.startProgramHeld();
    session.killCompositor();
    session.releaseProgram();

    session.startCompositor();

    expectHotKeysWork();
}

TEST_F(PlasmaFaultsTest, ACompositorThatHasRestartedBeforeTheProgramHasConnectedToItGetsTheScriptToo) {
    session.startProgramHeld();
    ASSERT_TRUE(session.waitForScript());
    restartCompositor();

    session.releaseProgram();

    expectHotKeysWork();
}

TEST_F(PlasmaFaultsTest, AfterACrashOfTheCompositorTheProgramHasTheEnvironmentOfItsStart) {
    session.startProgramHeld();
    const std::string before = environmentOf(session.program().pid());
    session.killCompositor();
    session.releaseProgram();

    session.startCompositor();

    ASSERT_TRUE(session.waitForCommands()) << session.program().errors();
    EXPECT_EQ(environmentOf(session.program().pid()), before);
}

TEST_F(PlasmaFaultsTest, GlobalShortcutsAreRegisteredAgainWithAServiceThatHasStartedAnew) {
    wayland::BusLink link(session.environment().at("DBUS_SESSION_BUS_ADDRESS"));
    plasma::KeyboardLayout layout(link, xkb::Keymap::us());
    plasma::GlobalShortcuts shortcuts(link, layout);
    constexpr std::uint32_t kControlOption = 6144;
    const std::vector<HotKeyRequest> requests{{124, kControlOption, {0, 1}}};
    const auto claims = shortcuts.registerHotKeys(requests);
    ASSERT_TRUE(PlasmaSession::waitFor([&] { return !session.shortcuts().empty(); }));

    restartCompositor();

    bool isPressed = false;
    const auto handler = shortcuts.installHandler([&](std::uint32_t) { isPressed = true; });
    EXPECT_TRUE(PlasmaSession::waitFor([&] {
        link.dispatch();
        session.input().press({key::kLeftControl, key::kLeftAlt, key::kRight});
        return isPressed;
    }));
}

TEST_F(PlasmaFaultsTest, AStoppedCompositorHoldsUpNeitherCommandsNorTheEnd) {
    start();
    ASSERT_TRUE(session.waitForCommands());
    session.compositor().signal(SIGSTOP);

    EXPECT_EQ(session.command({"list", "displays"}), 0);
    EXPECT_EQ(session.endProgram(), 0) << session.program().errors();

    session.compositor().signal(SIGCONT);
    EXPECT_TRUE(PlasmaSession::waitFor([this] { return session.shortcuts().empty(); }));
}

TEST_F(PlasmaFaultsTest, AProgramThatStartsWithAStoppedCompositorWorksOnceThatGoesOn) {
    session.compositor().signal(SIGSTOP);
    session.startProgramHeld();
    session.releaseProgram();

    session.compositor().signal(SIGCONT);

    expectHotKeysWork();
}

TEST_F(PlasmaFaultsTest, SigtermEndsAProgramThatStartsWithAStoppedCompositor) {
    session.compositor().signal(SIGSTOP);
    session.startProgramHeld(x11test::Alarm::Delivered); // Qt waits: only the time limit ends it
    session.releaseProgram();

    EXPECT_EQ(session.endProgram(), 0) << session.program().errors();
    session.compositor().signal(SIGCONT);
}

TEST_F(PlasmaFaultsTest, SigtermEndsAProgramThatWaitsForTheBus) {
    session.bus().signal(SIGSTOP);
    session.startProgramOnly();

    EXPECT_TRUE(session.endProgram().has_value());
    session.bus().signal(SIGCONT);
}

TEST_F(PlasmaFaultsTest, ABusThatStopsHoldsUpNoEnd) {
    start();
    ASSERT_TRUE(session.waitForCommands());
    session.bus().signal(SIGSTOP);

    EXPECT_EQ(session.endProgram(), 0) << session.program().errors();
}

TEST_F(PlasmaFaultsTest, AnAccessibilityBusThatNeverRepliesHoldsUpNoHotKeys) {
    const std::string path = session.environment().at("XDG_RUNTIME_DIR") + "/accessibility";
    const HangingBus hanging(path, 0);

    ASSERT_TRUE(session.startProgram({{"AT_SPI_BUS_ADDRESS", "unix:path=" + path}}));

    expectHotKeysWork();
}

TEST_F(PlasmaFaultsTest, TheProgramEndsInOrderWhenTheSessionBusGoes) {
    start();

    session.bus().kill();

    EXPECT_EQ(session.program().waitForExit(), 0) << session.program().errors();
}

TEST_F(PlasmaFaultsTest, AScriptThatCannotBeWrittenIsReportedInAWindowTooAndCommandsSayThatNothingIsDone) {
    occupyScript();
    start();
    ASSERT_TRUE(session.waitForCommands());

    EXPECT_TRUE(waitForOwnWindow(true));
    EXPECT_EQ(session.command({"right-half"}), kNothingDone);

    EXPECT_THAT(session.program().errors(), testing::HasSubstr("cannot write"));
    EXPECT_EQ(session.endProgram(), 0);
}

TEST_F(PlasmaFaultsTest, AHotKeyShowsTheWindowAgainThatSaysThatTheScriptDoesNotRun) {
    occupyScript();
    start();
    ASSERT_TRUE(waitForOwnWindow(true));
    session.input().press({key::kEscape});
    ASSERT_TRUE(waitForOwnWindow(false));

    session.input().press({key::kLeftControl, key::kLeftAlt, key::kRight});

    EXPECT_TRUE(waitForOwnWindow(true));
    EXPECT_EQ(session.endProgram(), 0) << session.program().errors();
}

TEST_F(PlasmaFaultsTest, OnTheFirstRunTheWindowThatSaysThatTheScriptDoesNotRunComesOnceAfterTheWelcome) {
    session.writeSettings("{}");
    occupyScript();
    start();
    ASSERT_TRUE(waitForOwnWindow(true));
    const auto closeWindow = [this] {
        const auto& all = session.probe().windows();
        const std::string name = std::ranges::find(all, true, &SeenWindow::isActive)->name;
        session.input().press({key::kEscape});
        EXPECT_TRUE(session.probe().waitUntil([&] {
            return std::ranges::find(session.probe().windows(), name, &SeenWindow::name) ==
                   session.probe().windows().end();
        }));
    };

    EXPECT_EQ(ownWindows(), 1);
    closeWindow(); // the welcome
    ASSERT_TRUE(waitForOwnWindow(true));
    closeWindow();

    EXPECT_EQ(ownWindows(), 0);
    EXPECT_EQ(session.endProgram(), 0) << session.program().errors();
}

TEST_F(PlasmaScriptTest, ACommandThatFailsIsNotTheLast) {
    run("3600000");
    ASSERT_TRUE(waitForCalls(1));

    link.answer(waiting[0], "[null]");

    EXPECT_TRUE(waitForCalls(2));
}

TEST_F(PlasmaScriptTest, ACallForCommandsIsRenewedHoweverLongTheProgramAnswersNone) {
    run("100");

    EXPECT_TRUE(waitForCalls(10));
}

TEST_F(PlasmaScriptTest, AProgramThatHasGoneIsNotCalledAnyMore) {
    const std::string name = "org.example.program";
    std::vector<std::uint64_t> calls;
    const auto program = collect("/Program", calls);
    link.call(wayland::busCall("RequestName", "su", {name, std::int64_t{0}}));
    run("100", name, "/Program");
    ASSERT_TRUE(session.probe().waitUntil([&] { return !calls.empty(); }));

    link.call(wayland::busCall("ReleaseName", "s", {name}));
    run("100"); // its renewals show that the time for those of the first has passed
    ASSERT_TRUE(waitForCalls(6));
    link.call(wayland::busCall("RequestName", "su", {name, std::int64_t{0}}));
    ASSERT_TRUE(waitForRenewals(1));
    const std::size_t before = calls.size();

    EXPECT_TRUE(waitForRenewals(6));
    EXPECT_EQ(calls.size(), before);
}

TEST_F(PlasmaScriptTest, ShortcutsThatAProgramHasBlockedWorkAgainOnceTheScriptSeesThatItHasGone) {
    constexpr std::uint32_t kPageDown = 109;
    const std::string name = "org.example.program";
    std::vector<std::uint64_t> calls;
    const auto program = collect("/Program", calls);
    link.call(wayland::busCall("RequestName", "su", {name, std::int64_t{0}}));
    session.openEditor();
    const auto minimize = [this] {
        session.input().press({key::kLeftMeta, kPageDown});
        session.probe().roundTrip();
        return std::ranges::any_of(session.probe().windows(), &SeenWindow::isMinimized);
    };
    run("100", name, "/Program");
    link.call({"org.kde.kglobalaccel",
               "/kglobalaccel",
               "org.kde.KGlobalAccel",
               "blockGlobalShortcuts",
               "b",
               {std::int64_t{true}}});
    ASSERT_TRUE(session.probe().waitUntil([&] { return calls.size() >= 4; }));
    EXPECT_FALSE(minimize());

    link.call(wayland::busCall("ReleaseName", "s", {name}));

    EXPECT_TRUE(PlasmaSession::waitFor(minimize));
}

TEST_F(PlasmaScriptTest, TheScriptOfAKilledRunIsReplacedAtOnceByABusyCompositor) {
    ScriptRun killed(session);
    ASSERT_TRUE(killed.seesWindows());

    session.compositor().signal(SIGSTOP); // so that it gets all calls at once
    ScriptRun next(session);
    next.passBus();
    session.compositor().signal(SIGCONT);

    EXPECT_TRUE(next.seesWindows());
}

TEST_F(PlasmaLockTest, WhileTheSessionIsLockedHotKeysDoNothingAndTheProgramGoesOn) {
    start();
    ASSERT_TRUE(session.waitForCommands());
    session.openEditor();
    const Rect before = session.frame(kEditor).value_or(Rect::null());
    ASSERT_TRUE(session.lock());

    session.input().press({key::kLeftControl, key::kLeftAlt, key::kRight});

    EXPECT_EQ(session.command({"list", "displays"}), 0); // after the hot key, if it has come
    session.probe().roundTrip();
    EXPECT_EQ(session.frame(kEditor), before);
    EXPECT_EQ(session.endProgram(), 0) << session.program().errors();
    EXPECT_TRUE(session.shortcuts().empty());
}

} // namespace
} // namespace tessarel::plasmatest
