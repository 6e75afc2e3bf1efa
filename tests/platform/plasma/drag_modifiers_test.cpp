// SPDX-License-Identifier: MIT

#include "platform/plasma/drag_modifiers.h"

#include "platform/plasma/plasma_desktop.h"
#include "platform/sim/sim_services.h"
#include "platform/sim/time/sim_clock.h"
#include "platform/sim/time/sim_main_queue.h"
#include "support/scratch_folder.h"
#include "support/x11/child_process.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <systemd/sd-bus.h>
#include <vector>

namespace tessarel::plasma {
namespace {

using namespace std::chrono_literals;
using wayland::BusLink;
using wayland::BusMessage;

constexpr std::size_t kEffects = 3;

/// Plays KWin on the bus, as far as its effects go. A `BusLink` sends no signals.
class FakeEffects {
public:
    explicit FakeEffects(const std::string& address) {
        EXPECT_GE(sd_bus_new(&m_bus), 0);
        EXPECT_GE(sd_bus_set_address(m_bus, address.c_str()), 0);
        EXPECT_GE(sd_bus_set_bus_client(m_bus, 1), 0);
        EXPECT_GE(sd_bus_start(m_bus), 0);
        EXPECT_GE(sd_bus_request_name(m_bus, "org.kde.KWin", 0), 0);
    }
    FakeEffects(const FakeEffects&) = delete;
    FakeEffects& operator=(const FakeEffects&) = delete;
    ~FakeEffects() { sd_bus_flush_close_unref(m_bus); }

    /// Handles the calls that arrive within a millisecond.
    void handleCalls() {
        constexpr std::uint64_t kMicroseconds = 1000;
        sd_bus_wait(m_bus, kMicroseconds);
        sd_bus_message* call = nullptr;
        while (sd_bus_process(m_bus, &call) > 0) {
            if (call != nullptr && sd_bus_message_is_method_call(call, nullptr, nullptr) > 0)
                handle(call);
            call = sd_bus_message_unref(call);
        }
    }
    /// Sends the signal that drawing has been turned on or off.
    void announceDrawing(bool isOn) {
        EXPECT_GE(sd_bus_emit_signal(m_bus, "/Compositor", "org.kde.kwin.Compositing", "compositingToggled",
                                     "b", int{isOn}),
                  0);
    }
    /// Sets up the drawing anew, for which it drops all effects.
    void reset() {
        announceDrawing(false);
        loaded.clear();
        announceDrawing(true);
    }

    bool findsEffects = false;
    bool supportsEffects = true; ///< as with OpenGL
    std::size_t loads = 0;       ///< number of attempts to load an effect
    std::set<std::string> loaded;

private:
    void handle(sd_bus_message* call) {
        const char* effect = "";
        sd_bus_message_read(call, "s", &effect);
        if (findsEffects && sd_bus_message_is_method_call(call, nullptr, "Get") > 0) {
            sd_bus_reply_method_return(call, "v", "as", 1, "tessarel_shift");
            return;
        }
        bool isDone = false;
        if (sd_bus_message_is_method_call(call, nullptr, "loadEffect") > 0) {
            ++loads;
            isDone = findsEffects && supportsEffects && loaded.insert(effect).second;
        } else if (sd_bus_message_is_method_call(call, nullptr, "unloadEffect") > 0) {
            loaded.erase(effect);
        }
        sd_bus_reply_method_return(call, "b", int{isDone});
    }

    sd_bus* m_bus = nullptr;
};

class DragModifiersTest : public testing::Test {
protected:
    DragModifiersTest() {
        (void)daemon.readLine();
        compositor.emplace(address);
        link.emplace(address);
        modifiers.emplace(*link, mirror, queue, folder.path());
        noting = modifiers->onTried([this](bool areReported) { reported.push_back(areReported); });
    }

    /// Waits until KWin has handled all calls so far, and all that it has sent before has arrived.
    void passBus() {
        bool hasReply = false;
        link->call({"org.kde.KWin", "/Effects", "org.kde.kwin.Effects", "isEffectLoaded"},
                   [&](const BusMessage&) { hasReply = true; });
        const x11test::Deadline deadline;
        while (!hasReply && !deadline.passed()) {
            compositor->handleCalls();
            link->dispatch();
        }
        EXPECT_TRUE(hasReply);
    }
    /// Returns whether there have been as many attempts to load the effects.
    bool areAttempted(std::size_t attempts) {
        passBus();
        return compositor->loads == attempts * kEffects;
    }

    ScratchFolder folder;
    std::string address = "unix:path=" + (folder.path() / "bus").string();
    x11test::ChildProcess daemon{
        {"dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address", "--address=" + address}};
    sim::SimClock clock;
    sim::SimMainQueue queue{clock};
    wayland::Mirror mirror;
    std::optional<FakeEffects> compositor;
    std::optional<BusLink> link;
    std::optional<DragModifiers> modifiers;
    std::vector<bool> reported; ///< what `onTried` has said
    SubscriptionPtr noting;
};

TEST_F(DragModifiersTest, EffectsThatTheCompositorNeverFindsAreLoadedTenTimesInAll) {
    modifiers->load();

    for (std::size_t attempt = 1; attempt <= 10; ++attempt) {
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

TEST_F(DragModifiersTest, EffectsThatTheCompositorDropsForAGraphicsResetAreLoadedAgain) {
    compositor->findsEffects = true;
    modifiers->load();
    EXPECT_TRUE(areAttempted(1));
    EXPECT_EQ(compositor->loaded.size(), kEffects);

    compositor->reset();
    passBus(); // the signals have arrived

    EXPECT_TRUE(areAttempted(2));
    EXPECT_EQ(compositor->loaded.size(), kEffects);
}

TEST_F(DragModifiersTest, ACompositorThatTurnsItsDrawingOnWithoutDroppingTheEffectsLoadsThemAgainToo) {
    compositor->findsEffects = true;
    modifiers->load();
    EXPECT_TRUE(areAttempted(1));
    ASSERT_EQ(reported, std::vector(kEffects, true));

    compositor->announceDrawing(true);
    passBus();

    EXPECT_TRUE(areAttempted(2));
    EXPECT_EQ(reported, std::vector(2 * kEffects, true));
}

TEST_F(DragModifiersTest, ModifiersAreNotReportedAnyMoreWhenAllAttemptsAfterAGraphicsResetHaveFailed) {
    compositor->findsEffects = true;
    modifiers->load();
    EXPECT_TRUE(areAttempted(1));
    reported.clear();

    compositor->findsEffects = false;
    compositor->reset();
    passBus();
    for (std::size_t attempt = 2; attempt <= 11; ++attempt) {
        EXPECT_TRUE(areAttempted(attempt)) << attempt;
        EXPECT_TRUE(reported.empty()) << attempt;
        clock.advance(4s);
    }

    EXPECT_EQ(reported, std::vector{false});
}

TEST_F(DragModifiersTest, EffectsThatTheCompositorFindsButDoesNotSupportAfterAGraphicsResetAreTriedOnce) {
    compositor->findsEffects = true;
    modifiers->load();
    EXPECT_TRUE(areAttempted(1));
    reported.clear();

    compositor->supportsEffects = false;
    compositor->reset();
    passBus();
    EXPECT_TRUE(areAttempted(2));
    clock.advance(4s);

    EXPECT_EQ(reported, std::vector{false});
    EXPECT_TRUE(areAttempted(2));
}

TEST_F(DragModifiersTest, AGraphicsResetBeginsTheAttemptsToLoadTheEffectsAnew) {
    modifiers->load();
    EXPECT_TRUE(areAttempted(1));
    clock.advance(3s);

    compositor->reset();
    passBus();
    EXPECT_TRUE(areAttempted(2));
    EXPECT_EQ(clock.waiting(), 1U);

    clock.advance(3s);
    EXPECT_TRUE(areAttempted(2));
    clock.advance(1s);
    EXPECT_TRUE(areAttempted(3));
}

/// The whole back end, in a home folder of its own.
class DragNoteTest : public DragModifiersTest {
protected:
    DragNoteTest() { ::setenv("XDG_DATA_HOME", folder.path().c_str(), 1); }
    ~DragNoteTest() override { ::unsetenv("XDG_DATA_HOME"); }
};

TEST_F(DragNoteTest, TheSettingsSayWhichKeyToChooseWhetherModifiersAreReportedOrNot) {
    sim::SimAlerts alerts;
    SingleInstance singleInstance(*link);
    const auto watchNoFiles = [](int, const std::function<void()>&) { return nullptr; };
    PlasmaDesktop desktop(*link, singleInstance, xkb::Keymap::us(), queue, alerts, folder.path(),
                          watchNoFiles, {});
    compositor->findsEffects = true;
    desktop.dragModifiers.load();
    EXPECT_TRUE(areAttempted(1));
    EXPECT_THAT(desktop.words.dragNote, testing::HasSubstr("choose Control or Meta"));

    compositor->supportsEffects = false;
    compositor->reset();
    passBus();
    EXPECT_TRUE(areAttempted(2));
    clock.advance(4s);
    EXPECT_THAT(desktop.words.dragNote, testing::HasSubstr("choose \"Nothing (always)\""));
}

} // namespace
} // namespace tessarel::plasma
