// SPDX-License-Identifier: MIT

#include "platform/plasma/session.h"

#include "platform/plasma/single_instance.h"
#include "platform/wayland/bus_names.h"
#include "support/scratch_folder.h"
#include "support/x11/child_process.h"

#include <gmock/gmock.h>

#include <chrono>
#include <csignal>
#include <fstream>
#include <optional>
#include <string>

namespace tessarel::plasma {
namespace {

using wayland::BusLink;
using wayland::BusMessage;
using Delivery = BusLink::Delivery;

class PlasmaSessionTest : public testing::Test {
protected:
    /// Makes the connection the owner of a name. Returns its unique name.
    static std::string own(BusLink& link, const std::string& name) {
        bool hasReply = false;
        link.call(
            wayland::busCall("RequestName", "su", {name, std::int64_t{0}}),
            [&](const BusMessage&) { hasReply = true; }, Delivery::Urgent);
        EXPECT_TRUE(link.waitUntil([&] { return hasReply; }, x11test::kPatience));
        return link.uniqueName();
    }

    static bool dispatchUntil(BusLink& link, const std::function<bool()>& holds) {
        const x11test::Deadline deadline;
        while (!holds() && !deadline.passed()) {
            link.waitUntil(holds, std::chrono::milliseconds(1));
            link.dispatch();
        }
        return holds();
    }

    ScratchFolder folder;
    std::string address = "unix:path=" + (folder.path() / "bus").string();
    x11test::ChildProcess daemon{
        {"dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address", "--address=" + address}};
    std::string printed = daemon.readLine(); // once the bus accepts connections
    BusLink link{address};
    BusLink compositor{address};
};

TEST_F(PlasmaSessionTest, TheNameOfTheCompositorIsEmptyUntilItRuns) {
    EXPECT_EQ(compositorName(link), "");

    const std::string name = own(compositor, "org.kde.KWin");

    EXPECT_EQ(compositorName(link), name);
    EXPECT_EQ(awaitCompositor(link), name);
}

TEST_F(PlasmaSessionTest, ABusThatHangsIsWaitedForWithABound) {
    const std::string name = own(compositor, "org.kde.KWin");
    daemon.signal(SIGSTOP);
    EXPECT_EQ(compositorName(link), std::nullopt);

    daemon.signal(SIGCONT);
    EXPECT_EQ(awaitCompositor(link), name);
}

TEST_F(PlasmaSessionTest, WithoutABusNobodyIsWaitedFor) {
    daemon.kill();

    EXPECT_EQ(awaitCompositor(link), "");
}

TEST_F(PlasmaSessionTest, ANewCompositorIsReportedWhetherItStartsLaterOrRunsAlready) {
    const std::string before = own(link, "org.kde.KWin");
    int starts = 0;
    const auto later = onNewCompositor(compositor, before, [&] { ++starts; });
    ASSERT_EQ(compositorName(compositor), before);
    compositor.dispatch();
    ASSERT_EQ(starts, 0);

    link.call(wayland::busCall("ReleaseName", "s", {std::string("org.kde.KWin")}));
    BusLink next(address);
    const std::string present = own(next, "org.kde.KWin");
    ASSERT_TRUE(dispatchUntil(compositor, [&] { return starts == 1; }));

    const auto already = onNewCompositor(compositor, before, [&] { ++starts; });
    EXPECT_TRUE(dispatchUntil(compositor, [&] { return starts == 2; }));
}

TEST_F(PlasmaSessionTest, ACopyThatEndsBeforeItHasReactedHasEnded) {
    std::optional<BusLink> other(address);
    bool isNotified = false;
    auto calls = other->serve(
        "/org/tessarel/Tessarel", [&](const BusMessage&) { isNotified = true; }, Delivery::Urgent);
    (void)own(*other, SingleInstance::kName); // after `serve`, so that no call comes before it
    SingleInstance copy(link);
    ASSERT_EQ(copy.claim([] {}, [] {}), nullptr);
    ASSERT_TRUE(other->waitUntil([&] { return isNotified; }, x11test::kPatience));

    other.reset();

    EXPECT_EQ(copy.awaitReaction().kind, SingleInstancePort::Reaction::Kind::Ended);
}

TEST_F(PlasmaSessionTest, ABusThatRefusesTheNameIsNoCopyThatHasEnded) {
    const std::string refusing = "unix:path=" + (folder.path() / "refusing").string();
    std::ofstream(folder.path() / "refusing.conf")
        << "<busconfig><listen>" << refusing
        << "</listen><policy context=\"default\"><allow send_destination=\"*\"/>"
        << "<allow receive_sender=\"*\"/><deny own=\"*\"/></policy></busconfig>";
    x11test::ChildProcess bus({"dbus-daemon", "--nofork", "--nopidfile", "--print-address",
                               "--config-file=" + (folder.path() / "refusing.conf").string()});
    (void)bus.readLine(); // once the bus accepts connections
    BusLink own(refusing);
    SingleInstance copy(own);

    EXPECT_EQ(copy.claim([] {}, [] {}), nullptr);

    const auto reaction = copy.awaitReaction();
    EXPECT_EQ(reaction.kind, SingleInstancePort::Reaction::Kind::Missing);
    EXPECT_EQ(reaction.problem, "the session bus refuses the name " + std::string(SingleInstance::kName));
}

TEST_F(PlasmaSessionTest, AClaimDoesNotWaitForABusThatHangsAfterItHasNamedTheCompositor) {
    SingleInstance copy(link);
    copy.request();
    ASSERT_EQ(compositorName(link), "");
    daemon.signal(SIGSTOP);

    EXPECT_NE(copy.claim([] {}, [] {}), nullptr);

    daemon.signal(SIGCONT);
}

TEST_F(PlasmaSessionTest, AClaimThatIsRepeatedWaitsForTheBusWithAShortBound) {
    (void)own(compositor, SingleInstance::kName);
    SingleInstance copy(link);
    ASSERT_EQ(copy.claim([] {}, [] {}), nullptr);
    daemon.signal(SIGSTOP);
    const auto begin = std::chrono::steady_clock::now();

    EXPECT_EQ(copy.claim([] {}, [] {}), nullptr);

    EXPECT_LT(std::chrono::steady_clock::now() - begin, SingleInstance::kPatience);
    daemon.signal(SIGCONT);
}

TEST_F(PlasmaSessionTest, ACopyThatHasClaimedTheDesktopIsReopenedByTheNextOne) {
    SingleInstance first(compositor);
    int reopenings = 0;
    const auto claim = first.claim([&] { ++reopenings; }, [] {});
    ASSERT_NE(claim, nullptr);

    SingleInstance second(link);
    EXPECT_EQ(second.claim([] {}, [] {}), nullptr);

    EXPECT_TRUE(dispatchUntil(compositor, [&] { return reopenings == 1; }));
    EXPECT_EQ(second.awaitReaction().kind, SingleInstancePort::Reaction::Kind::Reopened);
}

} // namespace
} // namespace tessarel::plasma
