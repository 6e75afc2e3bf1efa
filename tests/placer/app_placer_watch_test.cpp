// SPDX-License-Identifier: MIT

#include "placer/placer_test.h"

#include <gmock/gmock.h>

namespace tessarel {
namespace {

using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

class AppPlacerWatchTest : public PlacerTest {};

TEST_F(AppPlacerWatchTest, RunningProgramsAreWatchedFromTheStart) {
    placer->start();

    EXPECT_EQ(accessibility.observers(), 1U);
    EXPECT_EQ(desktop.frame(openAndWait(editor)), kRight);
}

TEST_F(AppPlacerWatchTest, ExistingWindowsAreLeftAlone) {
    const auto window = open(editor);

    placer->start();
    desktop.advance(kLaunchDelay);

    EXPECT_EQ(desktop.frame(window), kStart);
}

TEST_F(AppPlacerWatchTest, ExistingWindowsAreLeftAloneOnActivationAndOnSettingsChanges) {
    const auto window = open(editor);
    placer->start();

    desktop.activate(editor);
    store.saveAndNotify();
    desktop.advance(kLaunchDelay);

    EXPECT_EQ(desktop.frame(window), kStart);
}

TEST_F(AppPlacerWatchTest, NothingIsWatchedBeforeTheStart) {
    EXPECT_EQ(desktop.frame(openAndWait(editor)), kStart);
}

TEST_F(AppPlacerWatchTest, AProgramInTheBackgroundIsNotWatched) {
    desktop.application(editor).isRegular = false;
    placer->start();

    EXPECT_EQ(accessibility.observers(), 0U);
    EXPECT_EQ(desktop.frame(openAndWait(editor)), kStart);
}

TEST_F(AppPlacerWatchTest, AProgramThatLeavesTheBackgroundIsWatchedOnceItIsActivated) {
    desktop.application(editor).isRegular = false;
    placer->start();
    desktop.application(editor).isRegular = true;

    desktop.activate(editor);

    EXPECT_EQ(desktop.frame(openAndWait(editor)), kRight);
}

TEST_F(AppPlacerWatchTest, ThisProgramIsNotWatched) {
    placer->start();
    desktop.activate(sim::SimState::kOwnPid);

    EXPECT_EQ(desktop.frame(openAndWait(sim::SimState::kOwnPid)), kStart);
    const std::string self = "application " + std::to_string(sim::SimState::kOwnPid);
    EXPECT_THAT(desktop.takeRequests(), Not(Contains(HasSubstr(self)))) << "no observer is requested";
}

TEST_F(AppPlacerWatchTest, AnApplicationIsWatchedOnlyOnce) {
    placer->start();

    desktop.activate(editor);
    desktop.deactivateAll();
    desktop.activate(editor);
    store.saveAndNotify();
    placer->watchAll();

    EXPECT_EQ(accessibility.observers(), 1U);
}

TEST_F(AppPlacerWatchTest, NoObserverIsRequestedForAnApplicationThatIsWatchedAlready) {
    placer->start();
    EXPECT_THAT(desktop.takeRequests(), Contains("observe application " + std::to_string(editor)));

    store.saveAndNotify();
    EXPECT_THAT(desktop.takeRequests(), IsEmpty());
}

TEST_F(AppPlacerWatchTest, ApplicationsAreWatchedEvenWhileZonesAreNotRemembered) {
    settings.rememberApps = false;
    placer->start();

    settings.rememberApps = true; // which posts no change of the settings

    EXPECT_EQ(desktop.frame(openAndWait(editor)), kRight);
}

TEST_F(AppPlacerWatchTest, AnUnresponsiveApplicationDelaysTheStartByAQuarterOfASecond) {
    desktop.application(editor).answerTime = 10s;
    const auto before = desktop.clock().now();

    placer->start();

    EXPECT_EQ(desktop.clock().now() - before, 250ms);
    EXPECT_EQ(accessibility.observers(), 0U);
}

TEST_F(AppPlacerWatchTest, AnApplicationThatRefusedTheObserverIsRetriedWhenActivated) {
    desktop.application(editor).refusesObservers = true;
    placer->start();
    desktop.application(editor).refusesObservers = false;

    desktop.activate(editor);

    EXPECT_EQ(desktop.frame(openAndWait(editor)), kRight);
}

TEST_F(AppPlacerWatchTest, AWatchEndsWithItsApplication) {
    placer->start();

    desktop.kill(editor);

    EXPECT_EQ(accessibility.observers(), 0U);
}

TEST_F(AppPlacerWatchTest, AReusedProcessIdIsWatchedForTheNewProgram) {
    placer->start();
    desktop.kill(editor);
    settings.appZones["org.example.mail"] = 0;

    desktop.launchAs(editor, {.bundleIdentifier = "org.example.mail"});

    EXPECT_EQ(accessibility.observers(), 1U);
    EXPECT_EQ(desktop.frame(openAndWait(editor)), kLeft);
}

TEST_F(AppPlacerWatchTest, SeveralProcessesOfOneProgramAreAllWatched) {
    placer->start();
    const ProcessId second = desktop.launch({.bundleIdentifier = "org.example.editor"});

    EXPECT_EQ(desktop.frame(openAndWait(editor)), kRight);
    EXPECT_EQ(desktop.frame(openAndWait(second)), kRight);

    desktop.kill(editor);
    EXPECT_EQ(desktop.frame(openAndWait(second)), kRight);
}

/// Fixture: the placer, started without access to other programs.
class AppPlacerAccessTest : public PlacerTest {
protected:
    AppPlacerAccessTest() {
        desktop.trust().trusted = false;
        placer->start();
    }

    void grant() { desktop.trust().trusted = true; }
};

TEST_F(AppPlacerAccessTest, WithoutAccessNoRequestIsSent) {
    (void)desktop.launch({.bundleIdentifier = "org.example.mail"});

    EXPECT_THAT(desktop.takeRequests(), IsEmpty());
}

TEST_F(AppPlacerAccessTest, OnceGrantedTheNextSettingsChangeWatchesAllRunningPrograms) {
    const ProcessId launched = desktop.launch({.bundleIdentifier = "org.example.editor"});
    grant();

    EXPECT_EQ(accessibility.observers(), 0U);

    store.saveAndNotify();

    EXPECT_EQ(accessibility.observers(), 2U);
    EXPECT_EQ(desktop.frame(openAndWait(editor)), kRight);
    EXPECT_EQ(desktop.frame(openAndWait(launched)), kRight);
}

TEST_F(AppPlacerAccessTest, OnceGrantedAnActivationWatchesThatApplication) {
    grant();

    desktop.activate(editor);

    EXPECT_EQ(accessibility.observers(), 1U);
    EXPECT_EQ(desktop.frame(openAndWait(editor)), kRight);
}

TEST_F(AppPlacerAccessTest, OnceGrantedALaunchWatchesThatApplication) {
    grant();

    const ProcessId launched = desktop.launch({.bundleIdentifier = "org.example.editor"});

    EXPECT_EQ(accessibility.observers(), 1U);
    EXPECT_EQ(desktop.frame(openAndWait(launched)), kRight);
}

} // namespace
} // namespace tessarel
