// SPDX-License-Identifier: MIT

#include "platform/plasma/drag_modifiers.h"

#include "platform/sim/time/sim_clock.h"
#include "platform/sim/time/sim_main_queue.h"
#include "platform/wayland/bus_names.h"
#include "support/scratch_folder.h"
#include "support/x11/child_process.h"

#include <gtest/gtest.h>

#include <optional>

namespace tessarel::plasma {
namespace {

using namespace std::chrono_literals;
using wayland::BusLink;
using wayland::BusMessage;

constexpr int kEffects = 3;

class DragModifiersTest : public testing::Test {
protected:
    DragModifiersTest() {
        (void)daemon.readLine();
        link.emplace(address);
        compositor.emplace(address);
        // Plays KWin, which finds no effect: its replies are empty.
        effects = compositor->serve(
            "/Effects",
            [this](const BusMessage& call) {
                loads += call.member == "loadEffect" ? 1 : 0;
                compositor->answer(call.token, "");
            },
            BusLink::Delivery::Urgent);
        bool isOwner = false;
        compositor->call(
            wayland::busCall("RequestName", "su", {std::string("org.kde.KWin"), std::int64_t{0}}),
            [&](const BusMessage&) { isOwner = true; }, BusLink::Delivery::Urgent);
        EXPECT_TRUE(compositor->waitUntil([&] { return isOwner; }, x11test::kPatience));
        modifiers.emplace(*link, mirror, queue, folder.path());
    }

    /// Waits until KWin has handled all calls so far, and these are as many attempts to load the effects.
    bool areAttempted(int attempts) {
        bool hasReply = false;
        link->call({"org.kde.KWin", "/Effects", "org.kde.kwin.Effects", "isEffectLoaded"},
                   [&](const BusMessage&) { hasReply = true; });
        const x11test::Deadline deadline;
        while (!hasReply && !deadline.passed()) {
            compositor->waitUntil([] { return false; }, 1ms);
            link->dispatch();
        }
        return hasReply && loads == attempts * kEffects;
    }

    ScratchFolder folder;
    std::string address = "unix:path=" + (folder.path() / "bus").string();
    x11test::ChildProcess daemon{
        {"dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address", "--address=" + address}};
    sim::SimClock clock;
    sim::SimMainQueue queue{clock};
    wayland::Mirror mirror;
    std::optional<BusLink> link;
    std::optional<BusLink> compositor;
    SubscriptionPtr effects;
    int loads = 0;
    std::optional<DragModifiers> modifiers;
};

TEST_F(DragModifiersTest, EffectsThatTheCompositorNeverFindsAreLoadedTenTimesInAll) {
    modifiers->load();

    for (int attempt = 1; attempt <= 10; ++attempt) {
        EXPECT_TRUE(areAttempted(attempt)) << attempt;
        clock.advance(4s);
    }

    EXPECT_TRUE(areAttempted(10));
    EXPECT_EQ(clock.waiting(), 0U);
}

TEST_F(DragModifiersTest, TheEndOfTheProgramEndsTheAttempts) {
    modifiers->load();
    EXPECT_TRUE(areAttempted(1));

    modifiers.reset();

    EXPECT_EQ(clock.waiting(), 0U);
    EXPECT_TRUE(areAttempted(1));
}

} // namespace
} // namespace tessarel::plasma
