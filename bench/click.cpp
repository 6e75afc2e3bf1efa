// SPDX-License-Identifier: MIT

// Measures the time from a click on the tray icon until the menu is on the screen. Tessarel rebuilds its menu
// at each click; the baseline is an empty Qt tray program with a menu of one row.
//
//   click DIRECTORY TINT2_CONFIG [CLICKS]

#include "support/clicker.h"
#include "support/clock.h"
#include "support/resident.h"
#include "support/statistics.h"
#include "support/table.h"
#include "support/tray.h"

#include <cstdio>
#include <exception>
#include <filesystem>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace tessarel::bench {

namespace {

using namespace std::chrono_literals;

constexpr int kDefaultClicks = 30;
constexpr auto kBetweenClicks = 600ms;

struct Times {
    double first = 0; ///< the first click, which creates the menu's window and loads fonts
    std::vector<double> later;
};

Times clicksOn(const Resident& program, const Tray& tray, int clicks) {
    const Connection connection;
    const auto running = startAndAwait(program, connection);
    Clicker clicker(tray.awaitIcon(std::filesystem::path(program.path).filename()));
    Times times;
    times.first = clicker.click().count();
    for (int i = 0; i < clicks; ++i) {
        std::this_thread::sleep_for(kBetweenClicks);
        times.later.push_back(clicker.click().count());
    }
    return times;
}

void measure(const std::string& directory, const std::string& panelConfig, int clicks) {
    const Tray tray(panelConfig);
    Table table({"program", "first ms", "p50 ms", "p95 ms", "p50 more than empty"});
    std::optional<double> empty;
    for (const Resident& program : residents(directory)) {
        const Times times = clicksOn(program, tray, clicks);
        const double usual = median(times.later);
        if (!empty)
            empty = usual;
        table.add({program.name, number(times.first, 1), number(usual, 1),
                   number(percentile(times.later, 95), 1), number(usual - *empty, 1)});
    }
    table.print("Click to painted menu, " + std::to_string(clicks) + " clicks each");
}

} // namespace

} // namespace tessarel::bench

int main(int count, char** arguments) {
    if (count < 3) {
        std::fprintf(stderr, "usage: click DIRECTORY TINT2_CONFIG [CLICKS]\n");
        return 2;
    }
    try {
        tessarel::bench::measure(arguments[1], arguments[2],
                                 count > 3 ? std::stoi(arguments[3]) : tessarel::bench::kDefaultClicks);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "click: %s\n", error.what());
        return 1;
    }
}
