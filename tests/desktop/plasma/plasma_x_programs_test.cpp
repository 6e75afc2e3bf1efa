// SPDX-License-Identifier: MIT

#include "desktop/plasma/script_run.h"
#include "support/plasma/plasma_session.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <string>
#include <vector>

namespace tessarel::plasmatest {
namespace {

constexpr const char* kDragsWithoutAKey =
    R"({"hasOnboarded":true,"rememberApps":false,"dragTrigger":"always"})";
constexpr std::uint32_t kBackspace = 14;
constexpr Rect kLeftHalf{0, 0, 800, 900};

/// A program that shows its windows on KWin's X server.
struct XProgram {
    const char* name;
    std::vector<std::string> command;
    const char* windowClass;
    Size step; ///< by which its window grows
};

class PlasmaXServerTest : public testing::Test {
protected:
    void SetUp() override {
        session.writeSettings(kDragsWithoutAKey);
        ASSERT_TRUE(session.startProgram()) << session.program().errors();
    }

    void press(std::uint32_t key) { session.input().press({key::kLeftControl, key::kLeftAlt, key}); }

    PlasmaSession session{Drawing::Software, PlasmaSession::kFirst.size(), Extra::XServer};
};

class PlasmaXProgramsTest : public PlasmaXServerTest, public testing::WithParamInterface<XProgram> {
protected:
    void SetUp() override {
        PlasmaXServerTest::SetUp();
        session.open(GetParam().command, GetParam().windowClass);
        before = session.frame(GetParam().windowClass).value_or(Rect::null());
    }

    /// Waits until the window has grown or shrunk by whole steps to fill `zone`, but for less than a step.
    /// Returns whether it has.
    [[nodiscard]] bool fills(const Rect& zone) {
        const auto inSteps = [](double wanted, double now, double step) {
            return now + std::floor((wanted - now) / step) * step;
        };
        const Size& step = GetParam().step;
        const Rect expected{zone.x, zone.y, inSteps(zone.width, before.width, step.width),
                            inSteps(zone.height, before.height, step.height)};
        return session.settledFrame(GetParam().windowClass, expected) == expected;
    }
    void signalProgram(int signal) {
        const auto& all = session.probe().windows();
        const auto window = std::ranges::find(all, GetParam().windowClass, &SeenWindow::windowClass);
        ASSERT_NE(window, all.end());
        ::kill(window->pid, signal);
    }
    /// Presses the title bar and moves the pointer until the window follows, which KWin does not do after
    /// every press on a window of an X program. Returns false if it never does.
    [[nodiscard]] bool startDrag(const Rect& from) {
        constexpr double kBelowTop = 10;
        return PlasmaSession::waitFor([&] {
            session.input().moveTo(from.midX(), from.minY() + kBelowTop);
            session.input().setLeftButton(true);
            session.input().moveTo(from.midX() + 50, from.minY() + 50);
            session.input().moveTo(from.midX() + 100, from.minY() + 100);
            session.probe().roundTrip();
            if (session.frame(GetParam().windowClass) != from)
                return true;
            session.input().setLeftButton(false);
            return false;
        });
    }
    Rect before; ///< the frame with which the window has opened
};

TEST_F(PlasmaXServerTest, AWindowThatDoesNotTellItsProcessTakesItsZoneAndIsRestored) {
    session.open({"xcalc"}, "xcalc");
    const Rect before = session.frame("xcalc").value_or(Rect::null());
    ASSERT_EQ(session.probe().windows().back().pid, 0);

    press(key::kLeft);
    EXPECT_EQ(session.settledFrame("xcalc", kLeftHalf), kLeftHalf);
    press(kBackspace);
    EXPECT_EQ(session.settledFrame("xcalc", before), before);
}

TEST_F(PlasmaXServerTest, AWindowOfAFixedSizeKeepsItAndIsPulledBackOntoTheDisplay) {
    session.open({"python3", "-c",
                  "import tkinter; window = tkinter.Tk(); window.geometry('700x500');"
                  "window.resizable(False, False); window.mainloop()"},
                 "tk");
    const Size size = session.frame("tk").value_or(Rect::null()).size();

    press(key::kLeft);
    const Rect left{0, 0, size.width, size.height};
    EXPECT_EQ(session.settledFrame("tk", left), left);
    press(key::kDigit1 + 2);
    const Rect right{1600 - size.width, 0, size.width, size.height};
    EXPECT_EQ(session.settledFrame("tk", right), right);
}

TEST_P(PlasmaXProgramsTest, HotKeysAndDragsMoveItsWindowAndRestoreTakesItBack) {
    press(key::kLeft);
    EXPECT_TRUE(fills({0, 0, 800, 900}));
    press(key::kDigit1 + 4);
    EXPECT_TRUE(fills({800, 450, 800, 450}));
    press(kBackspace);
    EXPECT_EQ(session.settledFrame(GetParam().windowClass, before), before);

    ASSERT_TRUE(startDrag(before));
    session.input().moveTo(1200, 250);
    session.input().moveTo(1300, 200);
    session.input().setLeftButton(false);
    EXPECT_TRUE(fills({1067, 0, 533, 450}));
    press(kBackspace);
    EXPECT_EQ(session.settledFrame(GetParam().windowClass, before), before);
    EXPECT_EQ(session.endProgram(), 0) << session.program().errors();
}

TEST_P(PlasmaXProgramsTest, AProgramThatRespondsLateGetsWholeSteps) {
    signalProgram(SIGSTOP);
    press(key::kLeft);
    EXPECT_TRUE(fills({0, 0, 800, 900}));
    signalProgram(SIGCONT);

    press(key::kDigit1 + 4);
    EXPECT_TRUE(fills({800, 450, 800, 450}));
    press(kBackspace);
    EXPECT_EQ(session.settledFrame(GetParam().windowClass, before), before);
}

TEST(PlasmaScaledXServerTest, AWindowWhoseFrameIsRoundedToWholePixelsOfItsProgramSettlesAtOnce) {
    constexpr Rect kMiddleThird{427, 0, 426, 360};
    PlasmaSession session(Drawing::Software, PlasmaSession::kFirst.size(), Extra::ScaledXServer);
    session.outputs().setUp(0, {.scale = kXScale});
    session.open({"xcalc"}, "xcalc");
    ScriptRun run(session);
    ASSERT_TRUE(run.seesWindows());
    const auto window = run.mirror.named(session.probe().windows().back().name);

    run.bridge.place(window, kMiddleThird);

    EXPECT_TRUE(run.bridge.waitUntilSettled(window, x11test::kPatience));
    const Rect rounded{std::round(kMiddleThird.x * kXScale) / kXScale, 0,
                       std::round(kMiddleThird.width * kXScale) / kXScale, kMiddleThird.height};
    EXPECT_EQ(session.settledFrame("xcalc", rounded), rounded);
}

INSTANTIATE_TEST_SUITE_P(
    Programs, PlasmaXProgramsTest,
    testing::Values(XProgram{"xterm", {"xterm", "-fn", "fixed"}, "xterm", {6, 13}},
                    XProgram{"gtk3", {"env", "GDK_BACKEND=x11", "mousepad"}, "mousepad", {1, 1}}),
    [](const auto& program) { return std::string(program.param.name); });

} // namespace
} // namespace tessarel::plasmatest
