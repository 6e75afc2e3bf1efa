#include "desktop/homes_fixture.h"
#include "desktop/real_program.h"

#include <algorithm>
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
    /// zone.
    void snapAndWaitForCorrection(xcb_window_t window, int number) {
        const Frame target = frameIn(desktop.usableArea(), kZones.at(static_cast<std::size_t>(number - 1)));
        desktop.press(hotkey::zone(number));
        ASSERT_TRUE(observer.waitUntil([&] {
            const Frame frame = desktop.frame(window);
            return frame.x == target.x && frame.width == target.width && frame.height > target.height;
        })) << desktop.frame(window)
            << " in " << target;
        ASSERT_TRUE(observer.settleProgram(window));
        ASSERT_TRUE(desktop.waitUntilProgramRests());
    }
};

TEST_P(RealCorrectionTest, RestoreReturnsToTheBeginningOfTheChain) {
    const xcb_window_t window = start();
    ASSERT_TRUE(desktop.activate(window));
    const Frame before = desktop.frame(window);
    snapAndWaitForCorrection(window, 5);
    snapAndWaitForCorrection(window, 4);

    desktop.press(hotkey::kRestore);

    EXPECT_TRUE(observer.waitUntil([&] {
        const Frame frame = desktop.frame(window);
        return frame.x == before.x && frame.width == before.width;
    })) << desktop.frame(window)
        << " instead of " << before;
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
