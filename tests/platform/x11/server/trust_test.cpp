// SPDX-License-Identifier: MIT

#include "platform/x11/server/trust.h"

#include "model/config.h"
#include "platform/sim/sim_services.h"
#include "platform/x11/event_loop.h"
#include "support/x11/observer.h"
#include "support/x11/window_manager.h"
#include "support/x11/x_server.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

namespace tessarel::x11 {
namespace {

using testing::HasSubstr;
using x11test::WindowManagerKind;

/// A window manager that only announces its hints.
class PretendedWindowManager {
public:
    PretendedWindowManager(x11test::Observer& observer, const std::vector<const char*>& hints)
        : m_x(observer.x()), m_window(xcb_generate_id(m_x.get())) {
        xcb_create_window(m_x.get(), XCB_COPY_FROM_PARENT, m_window, m_x.root(), 0, 0, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
        std::vector<xcb_atom_t> atoms;
        for (const char* const hint : hints)
            atoms.push_back(m_x.atom(hint));
        set(m_x.root(), "_NET_SUPPORTED", XCB_ATOM_ATOM, atoms);
        set(m_x.root(), "_NET_SUPPORTING_WM_CHECK", XCB_ATOM_WINDOW, {m_window});
        set(m_window, "_NET_SUPPORTING_WM_CHECK", XCB_ATOM_WINDOW, {m_window});
    }

    /// Destroys the check window without deleting the properties, as after a crash.
    void die() {
        xcb_destroy_window(m_x.get(), m_window);
        m_x.roundTrip();
    }

    void set(xcb_window_t window, const char* property, xcb_atom_t type,
             const std::vector<std::uint32_t>& values) {
        xcb_change_property(m_x.get(), XCB_PROP_MODE_REPLACE, window, m_x.atom(property), type, 32,
                            static_cast<std::uint32_t>(values.size()), values.data());
        m_x.roundTrip();
    }

    [[nodiscard]] xcb_window_t window() const { return m_window; }

private:
    x11test::XConnection& m_x;
    xcb_window_t m_window;
};

const std::vector<const char*> kAllHints{"_NET_ACTIVE_WINDOW", "_NET_CLIENT_LIST"};

class X11TrustTest : public testing::Test {
protected:
    [[nodiscard]] std::unique_ptr<X11Trust> makeTrust(Session session) {
        return std::make_unique<X11Trust>(loop.connection(), session, loop.queue(), alerts);
    }

    x11test::XServer server;
    x11test::Observer observer{server.display()};
    EventLoop loop{server.display()};
    sim::SimAlerts alerts;
    std::unique_ptr<X11Trust> trust = makeTrust(Session::X11);
};

TEST_F(X11TrustTest, ADisplayWithoutAWindowManagerIsNotTrusted) {
    EXPECT_FALSE(trust->isTrusted());
}

TEST_F(X11TrustTest, AWindowManagerWithAllHintsIsTrusted) {
    const PretendedWindowManager manager(observer, kAllHints);

    EXPECT_TRUE(trust->isTrusted());
}

TEST_F(X11TrustTest, AWaylandSessionIsNotTrusted) {
    const PretendedWindowManager manager(observer, kAllHints);

    EXPECT_FALSE(makeTrust(Session::Wayland)->isTrusted());
}

TEST_F(X11TrustTest, EveryHintIsRequired) {
    for (const char* const missing : kAllHints) {
        std::vector<const char*> hints = kAllHints;
        std::erase(hints, missing);
        const PretendedWindowManager manager(observer, hints);
        loop.settle();
        EXPECT_FALSE(trust->isTrusted()) << missing;
    }
}

TEST_F(X11TrustTest, FollowsTheStartAndTheEndOfWindowManagers) {
    EXPECT_FALSE(trust->isTrusted());

    PretendedWindowManager manager(observer, kAllHints);
    loop.settle();
    EXPECT_TRUE(trust->isTrusted());

    manager.die();
    loop.settle();
    EXPECT_FALSE(trust->isTrusted());
}

TEST_F(X11TrustTest, UsesTheCacheWhileNothingChanges) {
    const PretendedWindowManager manager(observer, kAllHints);
    loop.settle();
    ASSERT_TRUE(trust->isTrusted());
    const std::size_t before = loop.connection().roundTrips();

    EXPECT_TRUE(trust->isTrusted());

    EXPECT_EQ(loop.connection().roundTrips(), before);
}

TEST_F(X11TrustTest, AMalformedSupportingWmCheckIsNotTrusted) {
    PretendedWindowManager manager(observer, kAllHints);
    const auto holdsFor = [&](xcb_window_t window, xcb_atom_t type,
                              const std::vector<std::uint32_t>& values) {
        manager.set(window, "_NET_SUPPORTING_WM_CHECK", type, values);
        loop.settle();
        const bool trusted = makeTrust(Session::X11)->isTrusted();
        manager.set(window, "_NET_SUPPORTING_WM_CHECK", XCB_ATOM_WINDOW, {manager.window()});
        return trusted;
    };

    for (const xcb_window_t window : {observer.root(), manager.window()}) {
        EXPECT_FALSE(holdsFor(window, XCB_ATOM_CARDINAL, {manager.window()}));
        EXPECT_FALSE(holdsFor(window, XCB_ATOM_WINDOW, {}));
        EXPECT_FALSE(holdsFor(window, XCB_ATOM_WINDOW, {0xffffffff}));
        EXPECT_FALSE(holdsFor(window, XCB_ATOM_WINDOW, {XCB_WINDOW_NONE}));
        EXPECT_FALSE(holdsFor(window, XCB_ATOM_WINDOW, {observer.root()}));
    }
    EXPECT_TRUE(makeTrust(Session::X11)->isTrusted());
}

TEST_F(X11TrustTest, AnOrdinaryServerBelongsToAnX11SessionWhateverTheEnvironmentSays) {
    EXPECT_EQ(sessionOf(loop.connection(), nullptr, nullptr), Session::X11);
    EXPECT_EQ(sessionOf(loop.connection(), "", "x11"), Session::X11);
    EXPECT_EQ(sessionOf(loop.connection(), "wayland-0", nullptr), Session::X11);
    EXPECT_EQ(sessionOf(loop.connection(), nullptr, "wayland"), Session::X11);
}

TEST_F(X11TrustTest, AServerWithMonitorsOfXwaylandBelongsToAWaylandSession) {
    server.setMonitors({{.name = "XWAYLAND0", .x = 0, .y = 0, .width = 800, .height = 600, .primary = true}});

    EXPECT_EQ(sessionOf(loop.connection(), "wayland-0", nullptr), Session::Wayland);
    EXPECT_EQ(sessionOf(loop.connection(), nullptr, "wayland"), Session::Wayland);

    server.setMonitors({});
}

TEST_F(X11TrustTest, PromptingReturnsAtOnceAndShowsWhatIsMissing) {
    trust->prompt();
    EXPECT_TRUE(alerts.shown.empty());

    loop.turn(X11Trust::kPatience);

    ASSERT_EQ(alerts.shown.size(), 1U);
    EXPECT_THAT(alerts.shown[0].informativeText, HasSubstr("No window manager is running"));
}

TEST_F(X11TrustTest, AMissingWindowManagerHasTenSecondsToStart) {
    trust->prompt();
    loop.turn(X11Trust::kPatience - std::chrono::milliseconds(1));
    EXPECT_TRUE(alerts.shown.empty());

    const PretendedWindowManager manager(observer, kAllHints);
    loop.settle();
    loop.turn(std::chrono::minutes(1));

    EXPECT_TRUE(alerts.shown.empty());
}

TEST_F(X11TrustTest, LaterOnAMissingWindowManagerIsReportedAtOnce) {
    loop.turn(X11Trust::kPatience);

    trust->prompt();
    loop.turn();

    EXPECT_EQ(alerts.shown.size(), 1U);
}

TEST_F(X11TrustTest, AnOpenAlertIsRemovedWhenAWindowManagerStarts) {
    trust->prompt();
    loop.turn(X11Trust::kPatience);
    loop.settle();
    ASSERT_EQ(alerts.standing().size(), 1U);

    const PretendedWindowManager manager(observer, kAllHints);
    loop.settle();

    EXPECT_TRUE(alerts.standing().empty());
}

TEST_F(X11TrustTest, PromptingNamesTheHintsThatTheWindowManagerLacks) {
    const PretendedWindowManager manager(observer, {"_NET_CLIENT_LIST_STACKING"});

    trust->prompt();
    loop.turn();

    ASSERT_EQ(alerts.shown.size(), 1U);
    EXPECT_THAT(alerts.shown[0].informativeText, HasSubstr("_NET_ACTIVE_WINDOW, _NET_CLIENT_LIST."));
}

TEST_F(X11TrustTest, PromptingInAWaylandSessionNamesTheOnesThatAreServed) {
    const auto onWayland = makeTrust(Session::Wayland);

    onWayland->prompt();
    loop.turn();

    ASSERT_EQ(alerts.shown.size(), 1U);
    EXPECT_THAT(alerts.shown[0].informativeText, HasSubstr("KDE Plasma or an X11"));
}

TEST_F(X11TrustTest, PromptingWhenTrustedDoesNothing) {
    const PretendedWindowManager manager(observer, kAllHints);

    trust->prompt();
    loop.turn();

    EXPECT_TRUE(alerts.shown.empty());
}

TEST_F(X11TrustTest, ThereAreNeverTwoAlertsAtOnce) {
    trust->prompt();
    trust->prompt();
    loop.turn(X11Trust::kPatience);
    EXPECT_EQ(alerts.shown.size(), 1U);

    trust->prompt();
    loop.turn(X11Trust::kPatience);
    EXPECT_EQ(alerts.shown.size(), 2U) << "other windows may cover the first one";
    EXPECT_EQ(alerts.standing().size(), 1U);

    ASSERT_TRUE(alerts.close(0));
    trust->prompt();
    loop.turn(X11Trust::kPatience);
    EXPECT_EQ(alerts.shown.size(), 3U);
}

TEST_F(X11TrustTest, NoAlertIsShownIfAWindowManagerStartsInTime) {
    trust->prompt();
    const PretendedWindowManager manager(observer, kAllHints);

    loop.settle();

    EXPECT_TRUE(alerts.shown.empty());
}

TEST_F(X11TrustTest, TheTrustMayBeDestroyedWhileItsAlertIsPendingOrShown) {
    trust->prompt();
    loop.turn(X11Trust::kPatience);
    ASSERT_EQ(alerts.standing().size(), 1U);
    trust.reset();
    EXPECT_TRUE(alerts.standing().empty());

    trust = makeTrust(Session::X11);
    trust->prompt();
    trust.reset();
    loop.turn(X11Trust::kPatience);
    EXPECT_EQ(alerts.shown.size(), 1U);
}

TEST_F(X11TrustTest, TheSystemHasNoSettingsToOpen) {
    EXPECT_FALSE(trust->hasSettings());
}

TEST_F(X11TrustTest, NothingIsTrustedOnceTheServerIsGone) {
    server.kill();

    EXPECT_FALSE(trust->isTrusted());
}

class X11TrustWindowManagerTest : public testing::TestWithParam<WindowManagerKind> {};

TEST_P(X11TrustWindowManagerTest, IsTrustedUntilItIsKilled) {
    const x11test::XServer server(x11test::serverFor(GetParam()));
    x11test::WindowManager manager(server, GetParam());
    EventLoop loop(server.display());
    sim::SimAlerts alerts;
    X11Trust trust(loop.connection(), Session::X11, loop.queue(), alerts);
    EXPECT_TRUE(trust.isTrusted());
    x11test::Observer observer(server.display());

    manager.process().kill();

    EXPECT_TRUE(observer.waitUntil([&] {
        loop.settle();
        return !trust.isTrusted();
    }));
}

INSTANTIATE_TEST_SUITE_P(All, X11TrustWindowManagerTest, testing::ValuesIn(x11test::kAllWindowManagers),
                         [](const auto& manager) { return std::string(x11test::name(manager.param)); });

} // namespace
} // namespace tessarel::x11
