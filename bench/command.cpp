// SPDX-License-Identifier: MIT

// Measures the time from starting a command until the window is in its new place, for the program's own
// command line and for xdotool doing the same, in shuffled order.
//
//   command DIRECTORY [REPETITIONS]

#include "support/connection.h"
#include "support/statistics.h"
#include "support/table.h"
#include "support/target.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <exception>
#include <random>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace tessarel::bench {

namespace {

using namespace std::chrono_literals;

constexpr int kDefaultRepetitions = 100;
constexpr Milliseconds kPatience = 2s;

using Words = std::vector<std::string>;

/// A program that places the active window when it is started.
struct Placer {
    std::string name;
    std::array<Words, 2> commands; ///< for the left and the lower half
    std::vector<double> milliseconds = {};
    int misses = 0;
    long events = 0;
};

/// Returns what places the active window by xdotool, with the client sizes of config/sxhkdrc. With "--sync",
/// xdotool waits for each change.
Placer xdotool(std::string name, const Words& options) {
    const auto command = [&options](const Words& corner, const Words& size) {
        Words words{"xdotool", "getactivewindow", "windowmove"};
        words.insert(words.end(), options.begin(), options.end());
        words.insert(words.end(), corner.begin(), corner.end());
        words.emplace_back("windowsize");
        words.insert(words.end(), options.begin(), options.end());
        words.insert(words.end(), size.begin(), size.end());
        return words;
    };
    return {std::move(name), {command({"0", "0"}, {"798", "875"}), command({"0", "450"}, {"1598", "425"})}};
}

/// The desktop with the target window, on which the placers take turns.
class Arena {
public:
    explicit Arena(Target& target) : m_target(target) {}

    /// Starts the command that moves the window to the other place, and adds the result to `placer`.
    void place(Placer& placer) {
        m_place = 1 - m_place;
        m_target.discardEvents();
        const auto begin = Clock::now();
        ChildProcess command(placer.commands[m_place]);
        const auto reaction = m_target.untilQuiet(kPatience);
        if (command.waitForExit() != 0)
            throw std::runtime_error(placer.name + " has failed: " + command.errors());
        placer.events += reaction.events;
        if (reaction.last)
            placer.milliseconds.push_back(Milliseconds(*reaction.last - begin).count());
        else
            ++placer.misses;
    }

private:
    Target& m_target;
    std::size_t m_place = 0;
};

std::vector<Placer> placers(const std::string& directory) {
    const std::string program = directory + "/launcher/tessarel"; // as it is installed
    return {{"tessarel left-half", {{{program, "left-half"}, {program, "bottom-half"}}}},
            {"tessarel zone-1", {{{program, "zone-1"}, {program, "zone-2"}}}},
            xdotool("xdotool", {}),
            xdotool("xdotool --sync", {"--sync"})};
}

/// Runs every placer `repetitions` times, in shuffled order, after two unmeasured rounds.
void runShuffled(Arena& arena, std::vector<Placer>& all, int repetitions) {
    std::vector<Placer*> order;
    for (Placer& placer : all) {
        Placer unmeasured = placer;
        for (int warmUp = 0; warmUp < 2; ++warmUp)
            arena.place(unmeasured);
        order.insert(order.end(), static_cast<std::size_t>(repetitions), &placer);
    }
    std::mt19937 generator(20230610); // a fixed seed, so that the order is the same in every run
    std::ranges::shuffle(order, generator);
    for (Placer* const placer : order)
        arena.place(*placer);
}

void measureWindow(const std::string& kind, Target&& target, const std::string& directory, int repetitions) {
    std::vector<Placer> all = placers(directory);
    Arena arena(target);
    runShuffled(arena, all, repetitions);
    constexpr std::size_t kBaseline = 2;
    const double baseline = median(all[kBaseline].milliseconds);
    Table table({"command", "p50 ms", "p95 ms", "p50 / xdotool", "events", "misses"});
    for (const Placer& placer : all)
        table.add(
            {placer.name, number(median(placer.milliseconds)), number(percentile(placer.milliseconds, 95)),
             number(median(placer.milliseconds) / baseline),
             number(static_cast<double>(placer.events) / repetitions, 1), std::to_string(placer.misses)});
    table.print("Command started to last ConfigureNotify, " + kind + ", " + std::to_string(repetitions) +
                " commands each");
}

void measure(const std::string& directory, int repetitions) {
    const ChildProcess tessarel({directory + "/tessarel"});
    // The keys are grabbed a moment earlier.
    while (ChildProcess({directory + "/tessarel", "list", "zones"}).waitForExit() != 0)
        continue;
    measureWindow("raw xcb window", Target(), directory, repetitions);
    measureWindow("Qt window", Target({directory + "/qt_target"}), directory, repetitions);
    measureWindow("xterm", Target({"xterm"}), directory, repetitions);
}

} // namespace

} // namespace tessarel::bench

int main(int count, char** arguments) {
    if (count < 2) {
        std::fprintf(stderr, "usage: command DIRECTORY [REPETITIONS]\n");
        return 2;
    }
    try {
        tessarel::bench::measure(arguments[1],
                                 count > 2 ? std::stoi(arguments[2]) : tessarel::bench::kDefaultRepetitions);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "command: %s\n", error.what());
        return 1;
    }
}
