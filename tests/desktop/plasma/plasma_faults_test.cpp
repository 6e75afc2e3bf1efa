// SPDX-License-Identifier: MIT

#include "platform/plasma/global_shortcuts.h"
#include "support/plasma/plasma_session.h"

#include <gmock/gmock.h>

#include <csignal>
#include <cstdint>
#include <filesystem>
#include <vector>

namespace tessarel::plasmatest {
namespace {

constexpr Rect kRightHalf{800, 0, 800, 900};
constexpr const char* kUsualSettings = R"({"hasOnboarded":true,"rememberApps":false})";
constexpr int kNothingDone = 4;

class PlasmaFaultsTest : public testing::Test {
protected:
    explicit PlasmaFaultsTest(Extra extra = Extra::None)
        : session(Drawing::Software, PlasmaSession::kFirst.size(), extra) {
        session.writeSettings(kUsualSettings);
    }

    void start() { ASSERT_TRUE(session.startProgram()) << session.program().errors(); }

    void restartCompositor() {
        session.killCompositor();
        session.startCompositor();
    }

    /// Expects that a hot key moves a new window, and that the program ends in order.
    void expectHotKeysWork() {
        ASSERT_TRUE(session.waitForCommands()) << session.program().errors();
        session.open({"kwrite"}, kEditor);
        session.input().press({key::kLeftControl, key::kLeftAlt, key::kRight});
        EXPECT_EQ(session.settledFrame(kEditor, kRightHalf), kRightHalf);
        EXPECT_EQ(session.endProgram(), 0) << session.program().errors();
        EXPECT_TRUE(session.shortcuts().empty());
    }

    PlasmaSession session;
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
    session.startProgramSuspended(Reached::Claim);
    session.killCompositor();
    session.program().signal(SIGCONT);

    session.startCompositor();

    expectHotKeysWork();
}

TEST_F(PlasmaFaultsTest, ACompositorThatHasRestartedBeforeTheProgramHasConnectedToItGetsTheScriptToo) {
    session.startProgramSuspended(Reached::Script);
    restartCompositor();

    session.program().signal(SIGCONT);

    expectHotKeysWork();
}

TEST_F(PlasmaFaultsTest, GlobalShortcutsAreRegisteredAgainWithAServiceThatHasStartedAnew) {
    wayland::BusLink link(session.environment().at("DBUS_SESSION_BUS_ADDRESS"));
    plasma::KeyboardLayout layout(link);
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
    session.startProgramSuspended(Reached::Claim);
    session.program().signal(SIGCONT);

    session.compositor().signal(SIGCONT);

    expectHotKeysWork();
}

TEST_F(PlasmaFaultsTest, SigtermEndsAProgramThatStartsWithAStoppedCompositor) {
    session.compositor().signal(SIGSTOP);
    session.startProgramSuspended(Reached::Claim);
    session.program().signal(SIGCONT);

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

TEST_F(PlasmaFaultsTest, TheProgramEndsInOrderWhenTheSessionBusGoes) {
    start();

    session.bus().kill();

    EXPECT_EQ(session.program().waitForExit(), 0) << session.program().errors();
}

TEST_F(PlasmaFaultsTest, AScriptThatCannotBeWrittenIsReportedAndCommandsSayThatNothingIsDone) {
    // In the place of the script.
    std::filesystem::create_directory(std::filesystem::path(session.environment().at("XDG_RUNTIME_DIR")) /
                                      "tessarel-bridge.js");
    start();
    ASSERT_TRUE(session.waitForCommands());

    EXPECT_EQ(session.command({"right-half"}), kNothingDone);

    EXPECT_THAT(session.program().errors(), testing::HasSubstr("cannot write"));
    EXPECT_EQ(session.endProgram(), 0);
}

TEST_F(PlasmaLockTest, WhileTheSessionIsLockedHotKeysDoNothingAndTheProgramGoesOn) {
    start();
    ASSERT_TRUE(session.waitForCommands());
    session.open({"kwrite"}, kEditor);
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
