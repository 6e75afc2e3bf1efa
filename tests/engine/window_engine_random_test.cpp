// SPDX-License-Identifier: MIT

#include "engine/engine_test.h"
#include "engine/window_engine.h"

#include <cmath>
#include <map>
#include <random>

namespace tessarel {
namespace {

constexpr int kSteps = 100'000;

/// A naive restore memory that keeps the whole history of every window and searches it backwards.
class NaiveMemory {
public:
    void placed(sim::WindowId window, const Rect& before, const Rect& after) {
        m_history[window].push_back({before, after});
    }

    /// Returns the frame before the first placement of the latest restore chain; empty when there is none.
    [[nodiscard]] std::optional<Rect> home(sim::WindowId window) const {
        const auto found = m_history.find(window);
        if (found == m_history.end() || found->second.empty())
            return {};
        const auto& history = found->second;
        std::size_t first = history.size() - 1;
        while (first > 0 && unmoved(history[first - 1].after, history[first].before))
            --first;
        return history[first].before;
    }

    void forget(sim::WindowId window) { m_history.erase(window); }

private:
    struct Placement {
        Rect before;
        Rect after;
    };

    static bool unmoved(const Rect& a, const Rect& b) {
        return !(std::abs(a.x - b.x) > 3 || std::abs(a.y - b.y) > 3 || std::abs(a.width - b.width) > 3 ||
                 std::abs(a.height - b.height) > 3);
    }

    std::map<sim::WindowId, std::vector<Placement>> m_history;
};

class WindowEngineRandomTest : public EngineTest {
protected:
    WindowEngineRandomTest() {
        addScreens();
        desktop.addScreen({.frame = {1280, -180, 1920, 1080}, .dock = 40, .rightBar = 60});
        settings.rememberApps = false;
        for (int n = 0; n < 4; ++n)
            windows.push_back(
                desktop.openWindow("org.example." + std::to_string(n), at({100.0 * n, 100, 600, 400})));
        desktop.window(windows[1]).minimum = {900, 500};
        desktop.window(windows[2]).step = {7, 14};
    }

    int whole(int from, int to) { return std::uniform_int_distribution(from, to)(random); }

    void userMoves(sim::WindowId window) {
        Rect frame = desktop.frame(window);
        const int reach = whole(0, 1) == 0 ? 4 : 300;
        frame.x += whole(-reach, reach);
        frame.y += whole(-reach, reach) * 0.5;
        if (whole(0, 2) == 0)
            frame.width = std::max(50.0, frame.width + whole(-reach, reach));
        desktop.drag(window, frame);
    }

    Outcome placeSomehow() {
        switch (whole(0, 3)) {
        case 0:
            return engine.centerFocused();
        case 1:
            return engine.moveFocusedToDisplay(whole(0, 1) == 0 ? 1 : -1);
        default:
            return engine.snapFocused({true, whole(0, 3) * 25.0, whole(0, 1) * 50.0, 25, 50}, {});
        }
    }

    /// Returns the frame that a restore to `home` results in, given what the program currently refuses.
    Rect reachable(sim::WindowId window, const Rect& home) {
        const auto& application = desktop.applicationOf(window);
        const Rect frame = desktop.frame(window);
        const Point origin = application.refusesPosition ? frame.origin() : home.origin();
        const auto& bent = desktop.window(window);
        const auto steps = [](double size, double step) {
            return step > 0 ? size - std::fmod(size, step) : size;
        };
        const Size size = application.refusesSize
                              ? frame.size()
                              : Size{std::max(bent.minimum.width, steps(home.width, bent.step.width)),
                                     std::max(bent.minimum.height, steps(home.height, bent.step.height))};
        return {origin.x, origin.y, size.width, size.height};
    }

    std::mt19937 random{19770525};
    std::vector<sim::WindowId> windows;
};

TEST_F(WindowEngineRandomTest, TheRestoreMemoryAgreesWithANaiveOne) {
    NaiveMemory memory;
    int restores = 0;
    int beeps = 0;
    for (int step = 0; step < kSteps; ++step) {
        const auto window = windows[static_cast<std::size_t>(whole(0, 3))];
        desktop.focus(window);
        const Rect before = desktop.frame(window);
        const int what = whole(0, 9);
        if (what < 3) {
            userMoves(window);
        } else if (what < 7) {
            placeSomehow();
            memory.placed(window, before, desktop.frame(window));
        } else if (what < 8) {
            auto& application = desktop.applicationOf(window);
            application.refusesSize = whole(0, 2) == 0;
            application.refusesPosition = whole(0, 2) == 0;
        } else {
            const auto home = memory.home(window);
            const Rect expected = home ? reachable(window, *home) : before;
            engine.restoreFocused();
            beeps += home ? 0 : 1;
            restores += home ? 1 : 0;
            memory.forget(window);
            ASSERT_EQ(desktop.frame(window), expected) << "step " << step;
        }
        ASSERT_EQ(desktop.beeps(), beeps) << "step " << step;
        (void)desktop.takeRequests();
    }
    EXPECT_GT(restores, kSteps / 20);
    EXPECT_GT(beeps, kSteps / 100);
}

} // namespace
} // namespace tessarel
