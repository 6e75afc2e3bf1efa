// SPDX-License-Identifier: MIT

#include "desktop/desktop.h"
#include "desktop/expected.h"
#include "desktop/window_kinds.h"

#include <gtest/gtest.h>

#include <tuple>

namespace tessarel::x11test {
namespace {

/// A hot key and the share of the usable area that it snaps to.
struct Placement {
    const char* name;
    Combination combination;
    Share share;
};

constexpr std::array<Placement, 10> kPlacements = {{
    {"zone 1", hotkey::zone(1), kZones[0]},
    {"zone 2", hotkey::zone(2), kZones[1]},
    {"zone 3", hotkey::zone(3), kZones[2]},
    {"zone 4", hotkey::zone(4), kZones[3]},
    {"zone 5", hotkey::zone(5), kZones[4]},
    {"left half", hotkey::kLeftHalf, kLeftHalf},
    {"right half", hotkey::kRightHalf, kRightHalf},
    {"top half", hotkey::kTopHalf, kTopHalf},
    {"bottom half", hotkey::kBottomHalf, kBottomHalf},
    {"whole area", hotkey::kMaximize, kWhole},
}};

using Cell = std::tuple<WindowManagerKind, WindowKind>;

/// One window manager and one kind of window.
class PlacementTest : public testing::TestWithParam<Cell> {
protected:
    ~PlacementTest() override {
        client.process().kill();
        EXPECT_TRUE(desktop.waitUntilOnlyPanel());
    }

    void giveStates() {
        if (!kind.states.empty()) {
            ASSERT_TRUE(desktop.addStates(window, kind.states)) << desktop.frame(window);
        }
    }

    /// Returns the frame that the window has after `placement`.
    Frame expected(const Placement& placement, const Frame& before) {
        const Frame zone = frameIn(area, placement.share);
        switch (effectiveRule(desktop.manager(), kind.rule)) {
        case SizeRule::Exact:
            return zone;
        case SizeRule::Stepped:
            return stepped(zone);
        case SizeRule::Minimum:
            return pulledBack(area, zone, outerSize(*kind.options.minimum));
        case SizeRule::Fixed:
            return pulledBack(area, {zone.x, zone.y, before.width, before.height}, {});
        }
        return {};
    }

    /// Returns the largest frame in `zone` whose client size is a whole number of resize increments.
    Frame stepped(const Frame& zone) {
        const Extents border = borders();
        const auto largest = [](int room, int base, int step) { return base + (room - base) / step * step; };
        const int width = zone.width - border.left - border.right;
        const int height = zone.height - border.top - border.bottom;
        const WindowOptions::Pair step = *kind.options.step;
        const WindowOptions::Pair base = *kind.options.base;
        return {zone.x, zone.y, largest(width, base.width, step.width) + border.left + border.right,
                largest(height, base.height, step.height) + border.top + border.bottom};
    }

    Frame outerSize(const WindowOptions::Pair& size) {
        const Extents border = borders();
        return {0, 0, size.width + border.left + border.right, size.height + border.top + border.bottom};
    }

    Extents borders() { return desktop.observer().decoration(window); }

    /// Once another window has been snapped, the program has finished with this one.
    void expectNextPressWorks() {
        const xcb_window_t other = desktop.open(client);
        const Frame zone = frameIn(area, kZones[3]);
        desktop.press(hotkey::zone(4));
        EXPECT_EQ(desktop.settledFrame(other, zone), zone);
    }

    const WindowKind kind = std::get<1>(GetParam());
    Desktop& desktop = sharedDesktop(std::get<0>(GetParam()));
    const Frame area = desktop.usableArea();
    TestClient client{desktop.server()};
    const xcb_window_t window = desktop.open(client, kind.options);
};

TEST_P(PlacementTest, EveryHotKeyPutsTheWindowWhereItBelongs) {
    Frame wanted;
    for (const Placement& placement : kPlacements) {
        giveStates();
        wanted = expected(placement, desktop.frame(window));

        desktop.press(placement.combination);

        EXPECT_TRUE(desktop.waitUntilWithout(window, kind.states)) << placement.name;
        EXPECT_EQ(desktop.settledFrame(window, wanted), wanted) << placement.name;
    }
    expectNextPressWorks();
    EXPECT_EQ(desktop.frame(window), wanted);
}

TEST_P(PlacementTest, CentreKeepsTheSize) {
    const Frame before = desktop.frame(window);
    const Frame wanted = centred(area, before);

    desktop.press(hotkey::kCenter);

    EXPECT_EQ(desktop.settledFrame(window, wanted), wanted);
}

TEST_P(PlacementTest, RestoreMovesTheWindowBackToItsPreviousFrame) {
    giveStates();
    const Frame before = desktop.frame(window);
    const Frame wanted = expected(kPlacements[4], before);
    desktop.press(hotkey::zone(5));
    ASSERT_EQ(desktop.settledFrame(window, wanted), wanted);

    desktop.press(hotkey::kRestore);

    EXPECT_EQ(desktop.settledFrame(window, before), before);
}

std::vector<Cell> possibleCells() {
    std::vector<Cell> cells;
    for (const WindowManagerKind manager : kAllWindowManagers)
        for (const WindowKind& kind : windowKinds())
            if (limitOf(manager, kind).empty())
                cells.emplace_back(manager, kind);
    return cells;
}

INSTANTIATE_TEST_SUITE_P(Matrix, PlacementTest, testing::ValuesIn(possibleCells()), [](const auto& instance) {
    return std::string(name(std::get<0>(instance.param))) + "_" + std::get<1>(instance.param).name;
});

} // namespace
} // namespace tessarel::x11test
