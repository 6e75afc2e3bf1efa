// SPDX-License-Identifier: MIT

#pragma once

#include "support/plasma/plasma_session.h"
#include "support/plasma/wayland_client.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <string>

namespace tessarel::plasmatest {

inline constexpr const char* kUsualSettings = R"({"hasOnboarded":true,"rememberApps":false})";
inline constexpr std::uint32_t kKeyA = 30;
inline constexpr std::uint32_t kBackspace = 14;
inline constexpr Rect kLeftHalf{0, 0, 800, 900};
inline constexpr Rect kRightHalf{800, 0, 800, 900};
inline constexpr Rect kFirstZone{0, 0, 533, 450};

/// A session with the program and windows of a client that takes every size.
class PlasmaWindowsTest : public testing::Test {
protected:
    explicit PlasmaWindowsTest(const Size& display = PlasmaSession::kFirst.size(),
                               const char* settings = kUsualSettings)
        : session(Drawing::Software, display), m_settings(settings) {}

    void SetUp() override {
        session.writeSettings(m_settings);
        ASSERT_TRUE(session.startProgram()) << session.program().errors();
    }

    /// Opens a window and waits until it is active.
    void open(WaylandClient& client, int number, const Size& minimum = {}) {
        open(client, number, {.applicationId = "org.example.test", .minimum = minimum});
    }
    void open(WaylandClient& client, int number, const WaylandClient::WindowOptions& options) {
        client.open(number, options);
        ASSERT_TRUE(isActivated(number));
    }
    void activate(int number) {
        runFor(number, "workspace.activeClient = c;");
        ASSERT_TRUE(isActivated(number));
    }
    /// Waits until the window is active. Returns false if it never is.
    [[nodiscard]] bool isActivated(int number) {
        return waitFor(number, [](const SeenWindow& window) { return window.isActive; });
    }
    /// Activates a window, whose next change of the frame then keeps KWin busy for longer than the program
    /// waits for a window.
    void activateAndHoldUpCompositorOnChange(int number) {
        runFor(number, R"(
            let isNext = true;
            c.frameGeometryChanged.connect(() => {
                for (const end = Date.now() + 500; isNext && Date.now() < end;);
                isNext = false;
            });
            workspace.activeClient = c;)");
        ASSERT_TRUE(isActivated(number));
    }
    /// Runs statements in KWin, for which `c` is the window.
    void runFor(int number, const std::string& statements) {
        session.probe().run("workspace.clientList().filter((c) => c.caption === \"" +
                            WaylandClient::titleOf(number) + "\").forEach((c) => {" + statements + "});");
    }
    [[nodiscard]] bool waitFor(int number, const std::function<bool(const SeenWindow&)>& holds) {
        return session.probe().waitUntil([&] {
            const auto& all = session.probe().windows();
            return std::any_of(all.begin(), all.end(), [&](const SeenWindow& window) {
                return window.title == WaylandClient::titleOf(number) && holds(window);
            });
        });
    }
    [[nodiscard]] bool comesTo(int number, const Rect& frame) {
        return waitFor(number, [&](const SeenWindow& window) { return window.frame == frame; });
    }
    void pressArrow(std::uint32_t arrow) { session.input().press({key::kLeftControl, key::kLeftAlt, arrow}); }
    void pressZone(std::uint32_t number) {
        session.input().press({key::kLeftControl, key::kLeftAlt, key::kDigit1 + number - 1});
    }
    void pressArrange() { session.input().press({key::kLeftControl, key::kLeftAlt, kKeyA}); }
    void pressNextDisplay() {
        session.input().press({key::kLeftControl, key::kLeftAlt, key::kLeftMeta, key::kRight});
    }

    /// Moves the window in front to the left half. Returns whether it is there then, and has this frame.
    [[nodiscard]] bool goesLeftTo(const Rect& frame) {
        (void)session.command({"left-half"});
        session.probe().roundTrip();
        const auto& all = session.probe().windows();
        const auto front = std::ranges::find(all, true, &SeenWindow::isActive);
        return front != all.end() && front->frame == frame;
    }
    /// Waits until the program has handled the keys so far, and waits for no window any longer.
    [[nodiscard]] bool passProgram() { return session.command({"list", "displays"}) == 0; }
    /// Expects that the window is where the user has put it by other means, and is restored there.
    void expectChainBeginsAt(int number, const Rect& frame) {
        EXPECT_TRUE(comesTo(number, frame));
        pressZone(5);
        EXPECT_TRUE(comesTo(number, {800, 450, 800, 450}));
        session.input().press({key::kLeftControl, key::kLeftAlt, kBackspace});
        EXPECT_TRUE(comesTo(number, frame));
        EXPECT_EQ(session.endProgram(), 0) << session.program().errors();
    }

    PlasmaSession session;

private:
    const char* m_settings;
};

} // namespace tessarel::plasmatest
