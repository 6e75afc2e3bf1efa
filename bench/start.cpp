// From exec to readiness: Tessarel holding all its keys against an empty Qt tray program in its loop. Keys
// that are held are no use before they are answered, so one is pressed at that very moment.
//
//   start DIRECTORY [REPETITIONS]

#include "support/keyboard.h"
#include "support/resident.h"
#include "support/statistics.h"
#include "support/table.h"
#include "support/target.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <exception>
#include <random>

namespace tessarel::bench {

namespace {

using namespace std::chrono_literals;

constexpr int kDefaultRepetitions = 30;
constexpr Milliseconds kPatience = 2s;

/// Milliseconds since exec, one of each start.
struct Times {
    std::vector<double> ready;
    std::vector<double> firstAnswer; ///< none from a program that does not move windows
};

/// A desktop with a window on it and the modifiers held down.
class Desktop {
public:
    void start(const Resident& resident, Times& times);

private:
    void pressAtOnce(Clock::time_point begin, Times& times);

    Connection m_connection;
    Target m_target;
    Keyboard m_keyboard;
    std::uint8_t m_key = key::k1; // its zone is not the one that the window is in
};

void Desktop::start(const Resident& resident, Times& times) {
    m_keyboard.holdModifiers();
    m_target.discardEvents();
    const auto begin = Clock::now();
    const auto running = startAndAwait(resident, m_connection);
    times.ready.push_back(Milliseconds(Clock::now() - begin).count());
    if (!resident.saysSo)
        pressAtOnce(begin, times);
    m_keyboard.release(m_key);
}

void Desktop::pressAtOnce(Clock::time_point begin, Times& times) {
    m_key = m_key == key::k1 ? key::k2 : key::k1;
    m_keyboard.press(std::array{m_key});
    if (const auto reaction = m_target.untilQuiet(kPatience); reaction.last)
        times.firstAnswer.push_back(Milliseconds(*reaction.last - begin).count());
}

void report(const std::vector<Resident>& programs, const std::vector<Times>& times, int repetitions) {
    Table table({"program", "measured", "p50 ms", "p95 ms", "p50 / empty"});
    const auto add = [&](const std::string& name, const std::vector<double>& values) {
        table.add({name, std::to_string(values.size()), number(median(values), 1),
                   number(percentile(values, 95), 1), number(median(values) / median(times.front().ready))});
    };
    for (std::size_t program = 0; program < programs.size(); ++program) {
        add(programs[program].name, times[program].ready);
        if (!times[program].firstAnswer.empty())
            add(programs[program].name + ", first press answered", times[program].firstAnswer);
    }
    table.print("Start, exec to ready, " + std::to_string(repetitions) + " starts each");
}

void measure(const std::string& directory, int repetitions) {
    Desktop desktop;
    const auto programs = residents(directory);
    std::vector<std::size_t> order;
    for (std::size_t program = 0; program < programs.size(); ++program) {
        Times unused; // the files come from the disk this time
        desktop.start(programs[program], unused);
        order.insert(order.end(), static_cast<std::size_t>(repetitions), program);
    }
    std::mt19937 generator(20230610); // any fixed number: the same order in every run
    std::ranges::shuffle(order, generator);

    std::vector<Times> times(programs.size());
    for (const auto program : order)
        desktop.start(programs[program], times[program]);
    report(programs, times, repetitions);
}

} // namespace

} // namespace tessarel::bench

int main(int count, char** arguments) {
    if (count < 2) {
        std::fprintf(stderr, "usage: start DIRECTORY [REPETITIONS]\n");
        return 2;
    }
    try {
        tessarel::bench::measure(arguments[1],
                                 count > 2 ? std::stoi(arguments[2]) : tessarel::bench::kDefaultRepetitions);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "start: %s\n", error.what());
        return 1;
    }
}
