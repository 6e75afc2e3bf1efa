// SPDX-License-Identifier: MIT

// Measures the work after a click on the tray icon before the menu can be painted, with an extreme number of
// layouts: building the menu as a value, and rebuilding the rows of the widget from it.

#include "app/services.h"
#include "app/status_menu.h"
#include "model/presets.h"
#include "model/settings/store.h"
#include "platform/qt_x11/tray/menu_view.h"
#include "platform/sim/sim_desktop.h"

#include <QApplication>
#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>

namespace tessarel::bench {

namespace {

/// The menu of a user with `layouts` layouts of their own.
struct Shell {
    explicit Shell(std::int64_t layouts) {
        desktop.trust().trusted = true;
        for (std::int64_t number = 0; number < layouts; ++number)
            store.settings.userLayouts.push_back(
                {"Layout " + std::to_string(number), Presets::all()[0].zones});
    }

    sim::SimDesktop desktop;
    Store store{desktop.preferences()};
    Runtime runtime;
    Permissions permissions{desktop.trust()};
    StatusMenu statusMenu{store, permissions,        runtime,
                          {},    desktop.keyNames(), [](ActionID) { return false; }};
};

void rebuildMenu(benchmark::State& state) {
    const Shell shell(state.range(0));
    for (auto _ : state)
        benchmark::DoNotOptimize(shell.statusMenu.rebuild());
}
BENCHMARK(rebuildMenu)->Arg(0)->Arg(1000)->Unit(benchmark::kMicrosecond);

/// Changes the pause mark and all layout names in each iteration, so that no row can be reused.
void rebuildMenuAndWidget(benchmark::State& state) {
    Shell shell(state.range(0));
    qt::MenuView view(qt::MenuView::DrawnBy::Qt, {});
    for (auto _ : state) {
        shell.runtime.paused = !shell.runtime.paused;
        for (Layout& layout : shell.store.settings.userLayouts)
            layout.name.back() = shell.runtime.paused ? 'a' : 'b';
        view.show(shell.statusMenu.rebuild());
        benchmark::DoNotOptimize(view.widget().sizeHint());
    }
}
BENCHMARK(rebuildMenuAndWidget)->Arg(0)->Arg(1000)->Unit(benchmark::kMicrosecond);

} // namespace

} // namespace tessarel::bench

int main(int count, char** arguments) {
    const QApplication application(count, arguments);
    benchmark::Initialize(&count, arguments);
    benchmark::RunSpecifiedBenchmarks();
}
