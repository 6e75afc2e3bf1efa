// SPDX-License-Identifier: MIT

#include "platform/plasma/bridge.h"

#include "platform/plasma/fake_compositor.h"
#include "platform/sim/time/sim_clock.h"
#include "platform/sim/time/sim_main_queue.h"
#include "support/scratch_folder.h"
#include "support/x11/child_process.h"

#include <gmock/gmock.h>

#include <optional>

namespace tessarel::plasma {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using wayland::BusLink;
using wayland::BusMessage;
using Delivery = BusLink::Delivery;

constexpr const char* kEverything = R"({"event":"everything","active":"a","windows":[
    {"name":"a","pid":42,"frame":[0,0,500,400],"kind":"standard","onCurrentDesktop":true}],
    "displays":[{"frame":[0,0,1600,900],"usable":[0,0,1600,900]}]})";

class BridgeTest : public testing::Test {
protected:
    BridgeTest() {
        (void)daemon.readLine();
        link.emplace(address);
    }

    void makeBridge(const std::filesystem::path& scripts) {
        ASSERT_TRUE(link->waitUntil([&] { return !link->uniqueName().empty(); }, x11test::kPatience));
        bridge.emplace(*link, mirror, queue, scripts,
                       [this](const std::string& problem) { problems.push_back(problem); });
        counting = bridge->onFailed([this] { ++failures; });
    }

    /// Loads the bridge into a compositor that accepts scripts, with one window.
    void load() {
        compositor.emplace(address, true);
        makeBridge(folder.path());
        bridge->load();
        passBus(); // the bridge knows who the compositor is
        compositor->report(link->uniqueName(), kEverything);
        ASSERT_TRUE(waitUntil([&] { return mirror.isReady(); }));
        mirror.deliver();
    }

    /// Waits for the replies to all calls of the bridge to the bus itself.
    void passBus() {
        bool hasReply = false;
        link->call(
            {"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "GetId"},
            [&](const BusMessage&) { hasReply = true; }, Delivery::Urgent);
        ASSERT_TRUE(waitUntil([&] { return hasReply; }));
    }

    /// Waits until the bridge has handled all reports so far.
    void passReports() {
        compositor->report(link->uniqueName(), R"({"event":"active","name":""})");
        ASSERT_TRUE(waitUntil([&] { return mirror.active() == wayland::kNoWindow; }));
        compositor->report(link->uniqueName(), R"({"event":"active","name":"a"})");
        ASSERT_TRUE(waitUntil([&] { return mirror.active() != wayland::kNoWindow; }));
    }

    bool waitUntil(const std::function<bool()>& holds) { return link->waitUntil(holds, x11test::kPatience); }

    bool exchangeUntil(const std::function<bool()>& holds) { return compositor->exchangeUntil(*link, holds); }

    ScratchFolder folder;
    std::string address = "unix:path=" + (folder.path() / "bus").string();
    x11test::ChildProcess daemon{
        {"dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address", "--address=" + address}};
    sim::SimClock clock;
    sim::SimMainQueue queue{clock};
    wayland::Mirror mirror;
    std::vector<wayland::WindowId> replaced; ///< the windows whose placements something else has replaced
    SubscriptionPtr replacements =
        mirror.onReplaced([this](wayland::WindowId window) { replaced.push_back(window); });
    std::vector<std::string> problems;
    int failures = 0;
    SubscriptionPtr counting; ///< counts the failures
    std::optional<FakeCompositor> compositor;
    std::optional<BusLink> link;
    std::optional<Bridge> bridge;
};

TEST_F(BridgeTest, AScriptThatCannotBeWrittenIsReportedAndNotLoaded) {
    compositor.emplace(address, true);
    makeBridge(folder.path() / "missing");

    bridge->load();
    bridge->awaitWindows(x11test::kPatience);

    EXPECT_FALSE(bridge->isAccepted());
    EXPECT_FALSE(bridge->isRetrying());
    EXPECT_EQ(failures, 1);
    EXPECT_THAT(problems, ElementsAre(HasSubstr("missing/tessarel-bridge.js")));
    EXPECT_THAT(compositor->requests, IsEmpty());
}

TEST_F(BridgeTest, WithoutACompositorTheScriptIsNotAccepted) {
    makeBridge(folder.path());

    bridge->load();
    bridge->awaitWindows(x11test::kPatience);

    EXPECT_FALSE(bridge->isAccepted());
    EXPECT_FALSE(mirror.isReady());
}

TEST_F(BridgeTest, AScriptThatTheCompositorDoesNotTakeYetIsLoadedAgain) {
    makeBridge(folder.path());
    bridge->load();
    bridge->awaitWindows(x11test::kPatience);
    ASSERT_FALSE(bridge->isAccepted());
    EXPECT_TRUE(bridge->isRetrying());

    compositor.emplace(address, true);
    clock.advance(500ms);

    EXPECT_TRUE(exchangeUntil([&] { return bridge->isAccepted(); }));
    EXPECT_FALSE(bridge->isRetrying());
    EXPECT_THAT(compositor->requests, testing::Contains("loadScript"));
}

TEST_F(BridgeTest, AScriptThatTheCompositorHasNotTakenForTenSecondsCountsAsFailed) {
    makeBridge(folder.path());

    bridge->load();
    passBus();
    for (auto waited = 0ms; waited < 10s; waited += 500ms) {
        EXPECT_EQ(failures, 0);
        clock.advance(500ms);
        passBus();
    }

    EXPECT_EQ(failures, 1);
    EXPECT_TRUE(bridge->isRetrying());
}

TEST_F(BridgeTest, AScriptThatTheCompositorHasNotTakenAfterSixtyAttemptsIsReported) {
    makeBridge(folder.path());

    bridge->load();
    passBus();
    for (int attempt = 1; attempt < 60; ++attempt) {
        EXPECT_TRUE(bridge->isRetrying());
        EXPECT_THAT(problems, IsEmpty());
        clock.advance(500ms);
        passBus();
    }

    EXPECT_FALSE(bridge->isRetrying());
    EXPECT_EQ(failures, 2);
    EXPECT_THAT(problems, ElementsAre(HasSubstr("does not take the script")));
}

TEST_F(BridgeTest, AScriptThatReportsNothingIsNotAcceptedAnyMoreUntilItDoes) {
    compositor.emplace(address, true);
    makeBridge(folder.path());
    bridge->load();
    ASSERT_TRUE(exchangeUntil([this] { return clock.waiting() > 1; })); // accepted

    clock.advance(9999ms);
    EXPECT_TRUE(bridge->isAccepted());
    EXPECT_EQ(failures, 0);
    clock.advance(1ms);
    EXPECT_FALSE(bridge->isAccepted());
    EXPECT_EQ(failures, 1);
    EXPECT_THAT(problems, ElementsAre(HasSubstr("does not run it")));

    compositor->report(link->uniqueName(), kEverything);
    EXPECT_TRUE(waitUntil([&] { return bridge->isAccepted(); }));
}

TEST_F(BridgeTest, ACompositorThatNeverRepliesIsWaitedForWithABound) {
    compositor.emplace(address, false);
    makeBridge(folder.path());

    bridge->load();
    bridge->awaitWindows(20ms);

    EXPECT_FALSE(mirror.isReady());
    EXPECT_TRUE(compositor->waitUntil([&] { return compositor->requests.size() == 3; }));
    EXPECT_THAT(compositor->requests, ElementsAre("unloadScript", "loadScript", "start"));
}

TEST_F(BridgeTest, TheScriptIsUnloadedAndItsFileRemovedAtTheEnd) {
    load();
    const auto isScript = [](const std::string& name) { return name == "tessarel-bridge.js"; };
    EXPECT_THAT(ScratchFolder::names(folder.path()), testing::Contains(testing::Truly(isScript)));

    bridge.reset();
    link.reset();

    EXPECT_THAT(ScratchFolder::names(folder.path()),
                testing::Not(testing::Contains(testing::Truly(isScript))));
    EXPECT_TRUE(compositor->waitUntil([&] { return compositor->requests.size() == 4; }));
    EXPECT_EQ(compositor->requests.back(), "unloadScript");
}

TEST_F(BridgeTest, ReportsOfOtherProgramsAreIgnored) {
    load();
    FakeCompositor other(address, false); // does not get the name

    other.report(link->uniqueName(), R"({"event":"removed","name":"a"})");
    compositor->report(link->uniqueName(), R"({"event":"active","name":""})");
    ASSERT_TRUE(waitUntil([&] { return mirror.active() == wayland::kNoWindow; }));
    other.report(link->uniqueName(), R"({"event":"removed","name":"a"})");
    compositor->report(link->uniqueName(), R"({"event":"active","name":"a"})");
    ASSERT_TRUE(waitUntil([&] { return mirror.active() != wayland::kNoWindow; }));

    EXPECT_NE(mirror.named("a"), wayland::kNoWindow);
}

TEST_F(BridgeTest, MalformedReportsAreIgnored) {
    load();

    for (const char* const text : {"", "{", "nonsense", "[1,2", R"({"event":"removed","name":"a")"})
        compositor->report(link->uniqueName(), text);
    compositor->report(link->uniqueName(), R"({"event":"active","name":""})");
    ASSERT_TRUE(waitUntil([&] { return mirror.active() == wayland::kNoWindow; }));

    EXPECT_NE(mirror.named("a"), wayland::kNoWindow);
}

TEST_F(BridgeTest, CommandsAnswerTheCallOfTheScriptInOneList) {
    load();
    bridge->place(mirror.named("a"), {1, 2, 300, 400});
    bridge->place(mirror.named("a"), {5, 6, 700, 800});

    compositor->next(link->uniqueName());
    ASSERT_TRUE(exchangeUntil([&] { return !compositor->commands.empty(); }));

    EXPECT_THAT(compositor->commands,
                ElementsAre(R"([{"frame":[1.0,2.0,300.0,400.0],"name":"a","serial":1},)"
                            R"({"frame":[5.0,6.0,700.0,800.0],"name":"a","serial":2}])"));
}

TEST_F(BridgeTest, CommandsAnswerTheCallThatTheScriptHasRenewed) {
    load();
    compositor->next(link->uniqueName());
    compositor->report(link->uniqueName(), R"({"event":"active","name":""})");
    ASSERT_TRUE(waitUntil([&] { return mirror.active() == wayland::kNoWindow; })); // the call has arrived

    compositor->next(link->uniqueName());
    ASSERT_TRUE(exchangeUntil([&] { return !compositor->commands.empty(); }));
    EXPECT_THAT(compositor->commands, ElementsAre(""));
    bridge->place(mirror.named("a"), {1, 2, 300, 400});

    ASSERT_TRUE(exchangeUntil([&] { return compositor->commands.size() == 2; }));
    EXPECT_EQ(compositor->commands.back(), R"([{"frame":[1.0,2.0,300.0,400.0],"name":"a","serial":1}])");
}

TEST_F(BridgeTest, AWindowHasSettledOnceTheScriptHasReportedTheLastPlacement) {
    load();
    const auto a = mirror.named("a");
    EXPECT_TRUE(bridge->waitUntilSettled(a, 250ms)); // nothing is under way

    bridge->place(a, {1, 2, 300, 400});
    bridge->place(a, {5, 6, 700, 800});
    compositor->report(link->uniqueName(),
                       R"({"event":"placed","name":"a","serial":1,"frame":[1,2,300,400]})");
    EXPECT_FALSE(bridge->waitUntilSettled(a, 50ms));
    compositor->report(link->uniqueName(),
                       R"({"event":"placed","name":"a","serial":2,"frame":[5,6,700,800]})");

    EXPECT_TRUE(bridge->waitUntilSettled(a, x11test::kPatience));
    EXPECT_EQ(mirror.find(a)->frame, (Rect{5, 6, 700, 800}));
}

TEST_F(BridgeTest, AWindowThatNeverSettlesIsWaitedForOnlyOnce) {
    load();
    const auto a = mirror.named("a");
    bridge->place(a, {1, 2, 300, 400});

    EXPECT_FALSE(bridge->waitUntilSettled(a, 20ms));
    clock.advance(250ms);

    EXPECT_FALSE(bridge->waitUntilSettled(a, 250ms)); // at once: the time is over
}

TEST_F(BridgeTest, AWindowThatTheScriptDoesNotWaitForAnyLongerHasNotSettledInTime) {
    load();
    const auto a = mirror.named("a");
    bridge->place(a, {1, 2, 300, 400});
    compositor->report(link->uniqueName(),
                       R"({"event":"placed","name":"a","late":true,"serial":1,"frame":[0,0,500,400]})");

    EXPECT_FALSE(bridge->waitUntilSettled(a, x11test::kPatience));
    EXPECT_TRUE(bridge->waitUntilSettled(a, x11test::kPatience)); // nothing is under way any longer
}

TEST_F(BridgeTest, AWindowThatIsLateBeforeItIsWaitedForHasNotSettledInTime) {
    load();
    const auto a = mirror.named("a");
    bridge->place(a, {1, 2, 300, 400});
    compositor->report(link->uniqueName(),
                       R"({"event":"placed","name":"a","late":true,"serial":1,"frame":[0,0,500,400]})");
    passReports();
    EXPECT_FALSE(bridge->waitUntilSettled(a, x11test::kPatience));

    bridge->place(a, {5, 6, 700, 800});
    compositor->report(link->uniqueName(),
                       R"({"event":"placed","name":"a","late":true,"serial":2,"frame":[0,0,500,400]})");
    passReports();
    bridge->place(a, {1, 2, 300, 400});
    compositor->report(link->uniqueName(),
                       R"({"event":"placed","name":"a","serial":3,"frame":[1,2,300,400]})");

    EXPECT_TRUE(bridge->waitUntilSettled(a, x11test::kPatience));
}

TEST_F(BridgeTest, APlacementThatAnotherRequestHasReplacedIsNotUnderWayAnyLonger) {
    load();
    const auto a = mirror.named("a");
    bridge->place(a, {1, 2, 300, 400});
    compositor->report(link->uniqueName(), R"({"event":"replaced","name":"a","serial":1})");

    EXPECT_FALSE(bridge->waitUntilSettled(a, x11test::kPatience));
    EXPECT_TRUE(bridge->waitUntilSettled(a, 250ms));
    mirror.deliver();
    EXPECT_THAT(replaced, ElementsAre(a));
}

TEST_F(BridgeTest, ALatePlacementMayBeReplacedAnyTimeLater) {
    load();
    const auto a = mirror.named("a");
    bridge->place(a, {1, 2, 300, 400});
    compositor->report(link->uniqueName(),
                       R"({"event":"placed","name":"a","late":true,"serial":1,"frame":[0,0,500,400]})");
    EXPECT_FALSE(bridge->waitUntilSettled(a, x11test::kPatience));

    compositor->report(link->uniqueName(), R"({"event":"replaced","name":"a","serial":1})");
    passReports();
    mirror.deliver();

    EXPECT_THAT(replaced, ElementsAre(a));
    EXPECT_TRUE(bridge->waitUntilSettled(a, 250ms));
}

TEST_F(BridgeTest, APlacementIsNotReplacedByARequestBeforeIt) {
    load();
    const auto a = mirror.named("a");
    bridge->place(a, {1, 2, 300, 400});
    bridge->place(a, {5, 6, 700, 800});
    compositor->report(link->uniqueName(), R"({"event":"replaced","name":"a","serial":1})");
    compositor->report(link->uniqueName(),
                       R"({"event":"placed","name":"a","serial":2,"frame":[5,6,700,800]})");

    EXPECT_TRUE(bridge->waitUntilSettled(a, x11test::kPatience));
    mirror.deliver();
    EXPECT_THAT(replaced, IsEmpty());
}

TEST_F(BridgeTest, AWindowThatClosesHasSettled) {
    load();
    const auto a = mirror.named("a");
    bridge->place(a, {1, 2, 300, 400});

    compositor->report(link->uniqueName(), R"({"event":"removed","name":"a"})");

    EXPECT_TRUE(bridge->waitUntilSettled(a, x11test::kPatience));
}

TEST_F(BridgeTest, AnUnknownWindowIsNotPlaced) {
    load();

    bridge->place(999, {1, 2, 300, 400});

    EXPECT_TRUE(bridge->waitUntilSettled(999, 250ms));
}

TEST_F(BridgeTest, TheEndOfTheBusEndsTheWaits) {
    load();
    const auto a = mirror.named("a");
    bridge->place(a, {1, 2, 300, 400});

    daemon.kill();

    EXPECT_TRUE(bridge->waitUntilSettled(a, x11test::kPatience));
}

} // namespace
} // namespace tessarel::plasma
