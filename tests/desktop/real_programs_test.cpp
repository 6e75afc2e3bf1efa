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

    /// Returns true if the window fills the zone except for less than one resize increment at the right and
    /// below.
    [[nodiscard]] bool isInZone(xcb_window_t window) {
        const std::vector<std::uint32_t> hints = observer.values(window, "WM_NORMAL_HINTS");
        const bool hasSteps = hints.size() > 10 && (hints[0] & kHasSteps) != 0;
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

std::string cellName(const testing::TestParamInfo<Cell>& info) {
    return std::string(std::get<1>(info.param).name) + "_on_" + std::string(name(std::get<0>(info.param)));
}

INSTANTIATE_TEST_SUITE_P(Some, RealProgramTest,
                         testing::Combine(testing::ValuesIn(kManagersForHomes),
                                          testing::Values(kXterm, kGtk3Program, kGtk4Program, kQtProgram)),
                         cellName);

} // namespace
} // namespace tessarel::x11test
