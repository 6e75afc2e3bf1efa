// SPDX-License-Identifier: MIT

// Measures the time from a key press until the window is in its new place, for all contenders in shuffled
// order. Adds all times to the file SAMPLES, one a line: window, program, milliseconds, separated by tabs.
//
//   latency DIRECTORY OPENBOX_PID [REPETITIONS [SAMPLES]]

#include "support/contenders.h"
#include "support/keyboard.h"
#include "support/process_figures.h"
#include "support/statistics.h"
#include "support/table.h"
#include "support/target.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <fstream>
#include <random>
#include <string>
#include <vector>

namespace tessarel::bench {

namespace {

using namespace std::chrono_literals;

constexpr int kDefaultRepetitions = 200;
constexpr Milliseconds kPatience = 1s;
constexpr Milliseconds kPatienceForNothing = 50ms;

/// The results of one contender in a series of presses.
struct Series {
    std::vector<double> milliseconds; ///< of the presses that were followed by a ConfigureNotify
    std::vector<double> cpuMicroseconds;
    long events = 0;
    int exact = 0; ///< presses after which the window had the frame that openbox itself gives it
    int misses = 0;
};

/// The desktop with the target window, on which the contenders take turns.
class Arena {
public:
    Arena(Target& target, const Contender& floor) : m_target(target), m_floor(floor) {
        for (const std::size_t place : {0U, 1U})
            m_frames[place] = move(floor, place);
    }

    /// Presses `keys` in one flush and adds the result to `series`.
    void press(std::span<const std::uint8_t> keys, pid_t pid, Milliseconds patience, Series& series);
    /// Makes `contender` move the window to the other of the two frames.
    void pressMove(const Contender& contender, Series& series);
    /// Makes `contender` move the window to the frame that it already has.
    void pressNothing(const Contender& contender, Series& series);
    /// Presses the key for the current frame and the key for the other one, in one flush.
    void pressNothingThenMove(const Contender& contender, Series& series);

private:
    Frame move(const Contender& contender, std::size_t place);
    void arrive(Series& series);

    Target& m_target;
    const Contender& m_floor;
    Keyboard m_keyboard;
    std::array<Frame, 2> m_frames{};
    std::size_t m_place = 1;
};

Frame Arena::move(const Contender& contender, std::size_t place) {
    Series unused;
    press(std::array{contender.keys[place]}, 0, kPatience, unused);
    m_place = place;
    return m_target.frame();
}

void Arena::press(std::span<const std::uint8_t> keys, pid_t pid, Milliseconds patience, Series& series) {
    m_keyboard.holdModifiers();
    m_target.discardEvents();
    const auto cpuBefore = pid > 0 ? cpuTime(pid) : 0ns;
    const auto pressed = m_keyboard.press(keys);
    const auto reaction = m_target.untilQuiet(patience);
    if (pid > 0)
        series.cpuMicroseconds.push_back(
            std::chrono::duration<double, std::micro>(cpuTime(pid) - cpuBefore).count());
    m_keyboard.release(keys.back());
    series.events += reaction.events;
    if (reaction.last)
        series.milliseconds.push_back(Milliseconds(*reaction.last - pressed).count());
    else
        ++series.misses;
}

void Arena::arrive(Series& series) {
    m_place = 1 - m_place;
    const auto frame = m_target.frame();
    if (frame == m_frames[m_place])
        ++series.exact;
    else
        move(m_floor, m_place); // restores the starting condition for the next contender
}

void Arena::pressMove(const Contender& contender, Series& series) {
    press(std::array{contender.keys[1 - m_place]}, contender.pid, kPatience, series);
    arrive(series);
}

void Arena::pressNothing(const Contender& contender, Series& series) {
    press(std::array{contender.keys[m_place]}, contender.pid, kPatienceForNothing, series);
}

void Arena::pressNothingThenMove(const Contender& contender, Series& series) {
    press(std::array{contender.keys[m_place], contender.keys[1 - m_place]}, contender.pid, kPatience, series);
    arrive(series);
}

using Press = void (Arena::*)(const Contender&, Series&);

struct Entry {
    const Contender* contender;
    Press press;
    Series series;
};

/// Runs every entry `repetitions` times, in shuffled order, after two unmeasured presses each.
void runShuffled(Arena& arena, std::vector<Entry>& entries, int repetitions) {
    std::vector<std::size_t> order;
    for (std::size_t entry = 0; entry < entries.size(); ++entry) {
        Series unused;
        for (int warmUp = 0; warmUp < 2; ++warmUp)
            (arena.*entries[entry].press)(*entries[entry].contender, unused);
        order.insert(order.end(), static_cast<std::size_t>(repetitions), entry);
    }
    std::mt19937 generator(20230610); // a fixed seed, so that the order is the same in every run
    std::ranges::shuffle(order, generator);
    for (const auto entry : order)
        (arena.*entries[entry].press)(*entries[entry].contender, entries[entry].series);
}

void writeSamples(const std::string& kind, const std::vector<Entry>& entries, const std::string& file) {
    std::ofstream out(file, std::ios::app);
    for (const auto& [contender, press, series] : entries) {
        for (const double time : series.milliseconds)
            out << kind << '\t' << contender->name << '\t' << number(time, 4) << '\n';
    }
}

void measureMoves(const std::string& kind, Target& target, const std::vector<Contender>& contenders,
                  int repetitions, const std::string& samples) {
    Arena arena(target, contenders[Contenders::kFloor]);
    std::vector<Entry> entries;
    for (const auto& contender : contenders)
        entries.push_back({&contender, &Arena::pressMove, {}});
    runShuffled(arena, entries, repetitions);
    if (!samples.empty())
        writeSamples(kind, entries, samples);

    const auto& floor = entries[Contenders::kFloor].series.milliseconds;
    const auto& raw = entries[Contenders::kRawClient].series.milliseconds;
    Table table({"program", "p50 ms", "p95 ms", "p99 ms", "p50 / floor", "p95 / floor", "p50 / raw", "events",
                 "same place", "misses"});
    for (const auto& [contender, press, series] : entries) {
        const auto& times = series.milliseconds;
        table.add({contender->name, number(median(times)), number(percentile(times, 95)),
                   number(percentile(times, 99)), number(median(times) / median(floor)),
                   number(percentile(times, 95) / percentile(floor, 95)), number(median(times) / median(raw)),
                   number(static_cast<double>(series.events) / repetitions, 1),
                   std::to_string(series.exact) + "/" + std::to_string(repetitions),
                   std::to_string(series.misses)});
    }
    table.print("Key press to last ConfigureNotify, " + kind + ", " + std::to_string(repetitions) +
                " presses each");
}

void measureNothing(Target& target, const std::vector<Contender>& contenders, int repetitions) {
    Arena arena(target, contenders[Contenders::kFloor]);
    std::vector<Entry> entries;
    for (const auto& contender : contenders)
        if (contender.pid > 0)
            for (const auto press : {&Arena::pressMove, &Arena::pressNothing, &Arena::pressNothingThenMove})
                entries.push_back({&contender, press, {}});
    runShuffled(arena, entries, repetitions);

    Table table({"program", "move ms", "nothing, then move ms", "nothing ms", "nothing / move", "CPU move us",
                 "CPU nothing us", "events of nothing"});
    for (std::size_t at = 0; at < entries.size(); at += 3) {
        const auto move = median(entries[at].series.milliseconds);
        const auto both = median(entries[at + 2].series.milliseconds);
        table.add({entries[at].contender->name, number(move), number(both), number(both - move),
                   number((both - move) / move), number(median(entries[at].series.cpuMicroseconds), 0),
                   number(median(entries[at + 1].series.cpuMicroseconds), 0),
                   number(static_cast<double>(entries[at + 1].series.events) / repetitions, 1)});
    }
    table.print("A press that changes nothing, raw xcb window, " + std::to_string(repetitions) +
                " presses each, p50");
}

void measure(const std::string& directory, pid_t windowManager, int repetitions, const std::string& samples) {
    const Contenders contenders(directory, windowManager);
    {
        Target target;
        measureMoves("raw xcb window", target, contenders.all(), repetitions, samples);
        measureNothing(target, contenders.all(), repetitions);
    }
    {
        Target target({directory + "/qt_target"});
        measureMoves("Qt window", target, contenders.all(), repetitions, samples);
    }
    Target target({"xterm"});
    measureMoves("xterm", target, contenders.all(), repetitions, samples);
}

} // namespace

} // namespace tessarel::bench

int main(int count, char** arguments) {
    if (count < 3) {
        std::fprintf(stderr, "usage: latency DIRECTORY OPENBOX_PID [REPETITIONS [SAMPLES]]\n");
        return 2;
    }
    try {
        tessarel::bench::measure(arguments[1], std::stoi(arguments[2]),
                                 count > 3 ? std::stoi(arguments[3]) : tessarel::bench::kDefaultRepetitions,
                                 count > 4 ? arguments[4] : "");
    } catch (const std::exception& error) {
        std::fprintf(stderr, "latency: %s\n", error.what());
        return 1;
    }
}
