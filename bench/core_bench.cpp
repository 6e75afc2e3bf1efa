// SPDX-License-Identifier: MIT

// Measures the CPU time of the core between a hot key and the request to the desktop, without a desktop:
// geometry, a whole snap in memory, and the settings document.

#include "engine/ax.h"
#include "engine/geo.h"
#include "engine/window_engine.h"
#include "model/settings/settings_codec.h"
#include "model/settings/store.h"
#include "platform/sim/sim_desktop.h"

#include <benchmark/benchmark.h>

#include <array>

namespace tessarel::bench {

namespace {

constexpr Zone kLeftHalf{true, 0, 0, 50, 100};
constexpr Zone kRightThird{true, 200.0 / 3, 0, 100.0 / 3, 100};

/// Three displays side by side, with an engine.
struct Core {
    Core() {
        for (const double x : {0.0, 1440.0, 3360.0})
            desktop.addScreen({.frame = {x, 0, 1440, 900}, .menuBar = 25});
        store.settings.gap = 10;
        store.settings.margin = 8;
    }

    sim::SimDesktop desktop;
    Store store{desktop.preferences()};
    Geo geo{desktop.displays(), store};
    AX ax{desktop.accessibility(), desktop.workspace()};
    WindowEngine engine{
        ax, geo, desktop.displays(), desktop.workspace(), desktop.windowList(), desktop.alertSound(), store};
};

void zoneFrame(benchmark::State& state) {
    const Core core;
    const Rect axArea{0, 25, 1440, 875};
    for (auto _ : state)
        benchmark::DoNotOptimize(core.geo.zoneFrame(kRightThird, axArea));
}
BENCHMARK(zoneFrame);

void screenContaining(benchmark::State& state) {
    const Core core;
    const Rect axStraddling{1200, 100, 800, 600};
    for (auto _ : state)
        benchmark::DoNotOptimize(core.geo.screen(axStraddling));
}
BENCHMARK(screenContaining);

/// The result includes the time that the simulated window takes to record the requests.
void snapFocused(benchmark::State& state) {
    Core core;
    core.desktop.openWindow("org.example.editor", {200, 150, 640, 480});
    const std::array zones{kLeftHalf, kRightThird};
    std::size_t turn = 0;
    for (auto _ : state) {
        core.engine.snapFocused(zones[turn++ % zones.size()], std::nullopt);
        benchmark::DoNotOptimize(core.desktop.takeRequests());
    }
}
BENCHMARK(snapFocused);

void encodeDocument(benchmark::State& state) {
    const AppSettings settings;
    for (auto _ : state)
        benchmark::DoNotOptimize(encodeSettings(settings));
}
BENCHMARK(encodeDocument);

void decodeDocument(benchmark::State& state) {
    const auto document = encodeSettings({}).value();
    for (auto _ : state)
        benchmark::DoNotOptimize(decodeSettings(document));
}
BENCHMARK(decodeDocument);

} // namespace

} // namespace tessarel::bench

BENCHMARK_MAIN();
