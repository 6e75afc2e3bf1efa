// SPDX-License-Identifier: MIT

#pragma once

#include "engine/action_runner.h"
#include "engine/ax.h"
#include "engine/geo.h"
#include "engine/hot_keys.h"
#include "engine/permissions.h"
#include "engine/runtime.h"
#include "engine/window_engine.h"
#include "model/presets.h"
#include "model/settings/store.h"
#include "platform/sim/sim_desktop.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tessarel {

inline void PrintTo(const Rect& rect, std::ostream* out) {
    *out << "(" << rect.x << ", " << rect.y << ", " << rect.width << ", " << rect.height << ")";
}

/// Fixture: the engine on an empty simulated desktop.
///
/// `addScreens` connects displays that expose mistakes with coordinates: the screen that windows are on is
/// neither the primary display nor the main screen, it lies at negative coordinates, and bars of four
/// different widths narrow it on all sides.
class EngineTest : public ::testing::Test {
protected:
    using Lines = std::vector<std::string>;

    /// Frame and usable area of the screen that windows are on, in accessibility coordinates.
    static constexpr Rect kScreen{-1440, -600, 1440, 900};
    static constexpr Rect kUsable{-1400, -575, 1300, 820};
    /// The left and the right half of `kUsable`.
    static constexpr Rect kLeft{-1400, -575, 650, 820};
    static constexpr Rect kRight{-750, -575, 650, 820};
    /// Frame of a window before its first placement.
    static constexpr Rect kStart{-1240, -450, 640, 480};
    /// Frame and usable area of the primary display, in accessibility coordinates.
    static constexpr Rect kPrimary{0, 0, 1280, 800};
    static constexpr Rect kPrimaryUsable{12, 31, 1240, 725};

    static constexpr Zone kLeftHalf{true, 0, 0, 50, 100};
    static constexpr Zone kRightHalf{true, 50, 0, 50, 100};
    static constexpr Zone kWhole{true, 0, 0, 100, 100};

    /// Connects the primary display, which is also the main screen.
    Screen addPrimary() {
        const Screen primary = desktop.addScreen(
            {.frame = {0, 0, 1280, 800}, .menuBar = 31, .dock = 44, .leftBar = 12, .rightBar = 28});
        desktop.setMainScreen(primary);
        return primary;
    }
    /// Connects the primary display and, to its left and higher up, the screen that windows are on. Returns
    /// the latter.
    Screen addScreens() {
        addPrimary();
        return desktop.addScreen(
            {.frame = {-1440, 500, 1440, 900}, .menuBar = 25, .dock = 55, .leftBar = 40, .rightBar = 100});
    }

    /// Returns the point at (x, y) from the top-left corner of the screen that windows are on, in
    /// accessibility coordinates.
    static constexpr Point at(double x, double y) { return {kScreen.x + x, kScreen.y + y}; }
    /// Returns the frame `local`, measured from that corner, in accessibility coordinates.
    static constexpr Rect at(const Rect& local) {
        return {kScreen.x + local.x, kScreen.y + local.y, local.width, local.height};
    }

    /// Returns the name of the window in the recorded requests.
    static std::string name(sim::WindowId window) {
        return "window " + std::to_string(static_cast<unsigned>(window));
    }

    sim::SimDesktop desktop;
    Store store{desktop.preferences()};
    AppSettings& settings = store.settings;
    Geo geo{desktop.displays(), store};
    AX ax{desktop.accessibility(), desktop.workspace()};
    WindowEngine engine{
        ax, geo, desktop.displays(), desktop.workspace(), desktop.windowList(), desktop.alertSound(), store};
    Runtime runtime;
    Permissions permissions{desktop.trust()};
    ActionRunner runner{engine, store, permissions, runtime};
    HotKeys hotKeys{desktop.hotKeys(), runner, store};
};

} // namespace tessarel
