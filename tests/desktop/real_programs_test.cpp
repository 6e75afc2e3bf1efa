// SPDX-License-Identifier: MIT

#include "desktop/homes_fixture.h"
#include "desktop/real_program.h"

#include <algorithm>
#include <chrono>
#include <optional>
#include <tuple>
#include <vector>

namespace tessarel::x11test {
namespace {

using Cell = std::tuple<WindowManagerKind, RealProgram>;

/// A program that is started, snapped, ended and started again.
class RealProgramTest : public testing::TestWithParam<Cell> {
protected:
    ~RealProgramTest() override {
        program.process.reset();
        EXPECT_TRUE(desktop.waitUntilOnlyPanel());
    }

    /// Starts the program and waits for its window.
    [[nodiscard]] xcb_window_t start() {
        program = x11test::start(std::get<1>(GetParam()), desktop);
        return program.window;
    }

    [[nodiscard]] bool hasSteps(xcb_window_t window) {
        const std::vector<std::uint32_t> hints = observer.values(window, "WM_NORMAL_HINTS");
        return hints.size() > 10 && (hints[0] & kHasSteps) != 0;
    }

    /// Returns true if the window fills the zone except for less than one resize increment at the right and
    /// below.
    [[nodiscard]] bool isInZone(xcb_window_t window) {
        const std::vector<std::uint32_t> hints = observer.values(window, "WM_NORMAL_HINTS");
        const bool hasSteps = this->hasSteps(window);
        const auto fits = [](int length, int room, std::uint32_t step) {
            return length <= room && length > room - static_cast<int>(std::max(step, 1U));
        };
        const Frame frame = desktop.frame(window);
        return frame.x == zone.x && frame.y == zone.y &&
               fits(frame.width, zone.width, hasSteps ? hints[9] : 1) &&
               fits(frame.height, zone.height, hasSteps ? hints[10] : 1);
    }
    void expectInZone(xcb_window_t window) {
        EXPECT_TRUE(observer.waitUntil([&] { return isInZone(window); }))
            << desktop.frame(window) << " in " << zone;
    }

    static constexpr std::uint32_t kHasSteps = 1U << 6U;
    Desktop& desktop = sharedDesktop(std::get<0>(GetParam()), kUsualSettings);
    Observer& observer = desktop.observer();
    const Frame zone = frameIn(desktop.usableArea(), kZones[4]);
    StartedProgram program;
};

TEST_P(RealProgramTest, OpensInItsZoneWhenItIsStartedAgain) {
    const xcb_window_t first = start();
    ASSERT_TRUE(desktop.activate(first));
    ASSERT_FALSE(isInZone(first));
    desktop.press(hotkey::zone(5));
    expectInZone(first);
    program.process.reset();
    ASSERT_TRUE(desktop.waitUntilOnlyPanel());

    expectInZone(start());
}

/// Programs of size steps, whose windows leave the maximised state at the press.
class RealTerminalTest : public RealProgramTest {};

TEST_P(RealTerminalTest, AMaximisedTerminalIsInItsZoneAfterOnePress) {
    const xcb_window_t window = start();
    ASSERT_TRUE(hasSteps(window));
    ASSERT_TRUE(desktop.activate(window));
    const std::vector<std::string> states{"_NET_WM_STATE_MAXIMIZED_HORZ", "_NET_WM_STATE_MAXIMIZED_VERT"};
    observer.changeState(window, StateChange::Add, states[0], states[1]);
    ASSERT_TRUE(observer.waitUntil([&] { return observer.hasState(window, states[0]); }));
    ASSERT_TRUE(observer.settle());

    desktop.press(hotkey::zone(5));

    EXPECT_TRUE(desktop.waitUntilWithout(window, states));
    expectInZone(window);
    EXPECT_TRUE(desktop.waitUntilProgramRests());
    expectInZone(window);
}

/// Programs that correct their size after a placement.
class RealCorrectionTest : public RealProgramTest {
protected:
    /// Presses the hot key of zone `number` and waits until the program has made its window higher than the
    /// zone. Returns how long that took.
    [[nodiscard]] std::chrono::steady_clock::duration snapUntilCorrected(xcb_window_t window, int number) {
        const Frame target = frameIn(desktop.usableArea(), kZones.at(static_cast<std::size_t>(number - 1)));
        const auto begin = std::chrono::steady_clock::now();
        desktop.press(hotkey::zone(number));
        EXPECT_TRUE(observer.waitUntil([&] {
            const Frame frame = desktop.frame(window);
            return frame.x == target.x && frame.width == target.width && frame.height > target.height;
        })) << desktop.frame(window)
            << " in " << target;
        const auto duration = std::chrono::steady_clock::now() - begin;
        EXPECT_TRUE(observer.settleProgram(window));
        EXPECT_TRUE(desktop.waitUntilProgramRests());
        return duration;
    }

    /// Starts the program and snaps its window twice. Returns the frame before, or nothing if the machine is
    /// so busy that the program corrected its window later than a correction is expected.
    [[nodiscard]] std::optional<Frame> snapTwice() {
        constexpr std::chrono::milliseconds kInTime{400};
        const xcb_window_t window = start();
        EXPECT_TRUE(desktop.activate(window));
        const Frame before = desktop.frame(window);
        const bool isInTime =
            snapUntilCorrected(window, 5) < kInTime && snapUntilCorrected(window, 4) < kInTime;
        return isInTime ? std::optional(before) : std::nullopt;
    }

    /// Ends the program, so that its next window begins a new chain.
    void end() {
        program.process.reset();
        ASSERT_TRUE(desktop.waitUntilOnlyPanel());
    }
};

TEST_P(RealCorrectionTest, RestoreReturnsToTheBeginningOfTheChain) {
    std::optional<Frame> before;
    for (const Deadline deadline; !before && !deadline.passed() && !HasFailure();) {
        end();
        before = snapTwice();
    }
    ASSERT_TRUE(before) << "the corrections came late";

    desktop.press(hotkey::kRestore);

    // Only the position: a busy program may correct its size once more, to that of the zone.
    const auto isBack = [&] {
        const Frame frame = desktop.frame(program.window);
        return frame.x == before->x && frame.y == before->y;
    };
    EXPECT_TRUE(observer.waitUntil(isBack)) << desktop.frame(program.window) << " instead of " << *before;
}

std::string cellName(const testing::TestParamInfo<Cell>& info) {
    return std::string(std::get<1>(info.param).name) + "_on_" + std::string(name(std::get<0>(info.param)));
}

INSTANTIATE_TEST_SUITE_P(Some, RealProgramTest,
                         testing::Combine(testing::ValuesIn(kManagersForHomes),
                                          testing::Values(kXterm, kGtk3Program, kGtk4Program, kQtProgram)),
                         cellName);

INSTANTIATE_TEST_SUITE_P(Some, RealTerminalTest,
                         testing::Combine(testing::ValuesIn(kManagersForHomes),
                                          testing::Values(kXterm, kGtk3Terminal)),
                         cellName);

INSTANTIATE_TEST_SUITE_P(Some, RealCorrectionTest,
                         testing::Combine(testing::ValuesIn(kManagersForHomes), testing::Values(kCalculator)),
                         cellName);

} // namespace
} // namespace tessarel::x11test
