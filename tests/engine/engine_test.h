#pragma once

#include "engine/action_runner.h"
#include "engine/ax.h"
#include "engine/geo.h"
#include "engine/hot_keys.h"
#include "engine/permissions.h"
#include "engine/runtime.h"
#include "engine/window_engine.h"
#include "model/presets.h"
#include "model/store.h"
#include "platform/sim/sim_desktop.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tessarel {

inline void PrintTo(const Rect& rect, std::ostream* out) {
    *out << "(" << rect.x << ", " << rect.y << ", " << rect.width << ", " << rect.height << ")";
}

/// The engine on an empty simulated desktop.
class EngineTest : public ::testing::Test {
protected:
    using Lines = std::vector<std::string>;

    static constexpr Zone kLeftHalf{true, 0, 0, 50, 100};
    static constexpr Zone kRightHalf{true, 50, 0, 50, 100};
    static constexpr Zone kWhole{true, 0, 0, 100, 100};

    /// A display of 1440 by 900 whose menu bar leaves (0, 25, 1440, 875) to windows.
    Screen addScreen() { return desktop.addScreen({.frame = {0, 0, 1440, 900}, .menuBar = 25}); }

    /// How the record of requests calls the window.
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
