// SPDX-License-Identifier: MIT

#include "platform/plasma/trust.h"

#include "platform/plasma/fake_compositor.h"
#include "platform/sim/sim_services.h"
#include "platform/sim/time/sim_clock.h"
#include "platform/sim/time/sim_main_queue.h"
#include "platform/wayland/bus_names.h"
#include "support/scratch_folder.h"
#include "support/x11/child_process.h"

#include <gmock/gmock.h>

#include <chrono>
#include <filesystem>
#include <string>

namespace tessarel::plasma {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

/// On a bus without KWin.
class PlasmaTrustTest : public testing::Test {
protected:
    /// Loads the script, which cannot be written: its folder is missing.
    void failToWrite() {
        bridge.load();
        ASSERT_FALSE(trust.isTrusted());
    }
    /// Waits for the replies to all calls to KWin, which is not there.
    void passBus() {
        bool hasReply = false;
        link.call(
            wayland::busCall("GetId", "", {}), [&](const wayland::BusMessage&) { hasReply = true; },
            wayland::BusLink::Delivery::Urgent);
        ASSERT_TRUE(link.waitUntil([&] { return hasReply; }, x11test::kPatience));
    }
    /// Plays the script that runs after all.
    void runScript() {
        std::filesystem::create_directory(scripts);
        bridge.load(); // it is taken for accepted until KWin replies
        mirror.reset({});
        mirror.deliver();
    }

    ScratchFolder folder;
    std::filesystem::path scripts = folder.path() / "scripts";
    std::string address = "unix:path=" + (folder.path() / "bus").string();
    x11test::ChildProcess daemon{
        {"dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address", "--address=" + address}};
    std::string printed = daemon.readLine(); // once the bus accepts connections
    sim::SimClock clock;
    sim::SimMainQueue queue{clock};
    sim::SimAlerts alerts;
    wayland::Mirror mirror;
    wayland::BusLink link{address};
    Bridge bridge{link, mirror, queue, scripts, [](const std::string&) {}};
    Trust trust{bridge, mirror, queue, alerts};
    SubscriptionPtr losses = trust.onLost([this] { trust.prompt(); }); ///< as the program does
};

TEST_F(PlasmaTrustTest, AScriptThatCannotBeWrittenIsExplainedAtOnce) {
    failToWrite();

    clock.advance({});

    ASSERT_THAT(alerts.shown, SizeIs(1));
    EXPECT_EQ(alerts.shown[0].messageText, "Tessarel cannot move windows");
    EXPECT_THAT(alerts.shown[0].informativeText, HasSubstr("KWin does not run Tessarel's script."));
}

TEST_F(PlasmaTrustTest, AScriptThatIsTakenButDoesNotRunIsExplainedUntilItRuns) {
    FakeCompositor compositor(address, true);
    std::filesystem::create_directory(scripts);
    bridge.load();
    ASSERT_TRUE(compositor.exchangeUntil(link, [this] { return clock.waiting() > 1; })); // accepted

    clock.advance(std::chrono::milliseconds(9999));
    EXPECT_THAT(alerts.shown, IsEmpty());
    clock.advance(std::chrono::milliseconds(1));
    EXPECT_THAT(alerts.standing(), SizeIs(1));

    mirror.reset({});
    mirror.deliver();
    EXPECT_THAT(alerts.standing(), IsEmpty());
}

TEST_F(PlasmaTrustTest, PromptingShowsTheAlertAgain) {
    failToWrite();
    clock.advance({});
    ASSERT_THAT(alerts.shown, SizeIs(1));

    trust.prompt();
    clock.advance({});

    EXPECT_THAT(alerts.shown, SizeIs(2));
}

TEST_F(PlasmaTrustTest, WhatAPromptHasExplainedIsNotExplainedAgainAfterTheLastAttempt) {
    std::filesystem::create_directory(scripts);
    bridge.load();
    passBus();
    trust.prompt();

    while (bridge.isRetrying()) {
        clock.advance(std::chrono::milliseconds(500));
        passBus();
    }
    clock.advance({});

    EXPECT_THAT(alerts.shown, SizeIs(1));
}

TEST_F(PlasmaTrustTest, PromptingShowsNothingWhenTheScriptRuns) {
    runScript();

    trust.prompt();
    clock.advance(Trust::kPatience);

    EXPECT_THAT(alerts.shown, IsEmpty());
}

TEST_F(PlasmaTrustTest, ACompositorThatDoesNotTakeTheScriptYetHasTenSeconds) {
    std::filesystem::create_directory(scripts);
    bridge.load();
    bridge.awaitWindows(x11test::kPatience); // there is no KWin to take the script
    ASSERT_FALSE(trust.isTrusted());

    trust.prompt();
    clock.advance(Trust::kPatience - std::chrono::milliseconds(1));
    EXPECT_THAT(alerts.shown, IsEmpty());
    clock.advance(std::chrono::milliseconds(1));

    EXPECT_THAT(alerts.shown, SizeIs(1));
}

TEST_F(PlasmaTrustTest, AnOpenAlertIsRemovedWhenTheScriptRuns) {
    failToWrite();
    clock.advance({});
    ASSERT_THAT(alerts.standing(), SizeIs(1));

    runScript();

    EXPECT_THAT(alerts.standing(), IsEmpty());
}

TEST_F(PlasmaTrustTest, TheSystemHasNoSettingsToOpen) {
    EXPECT_FALSE(trust.hasSettings());
}

} // namespace
} // namespace tessarel::plasma
