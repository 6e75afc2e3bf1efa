// SPDX-License-Identifier: MIT

// Measures startup from exec to ready. Tessarel is ready when it has grabbed all its keys; the baseline is an
// empty Qt tray program that has entered its event loop. A key is pressed as soon as the grabs exist, to
// measure when the first press takes effect. Then Tessarel alone is measured, with no and with many installed
// applications, and with and without a due update check.
//
//   start DIRECTORY [REPETITIONS]

#include "support/entry_folder.h"
#include "support/keyboard.h"
#include "support/resident.h"
#include "support/scratch_folder.h"
#include "support/statistics.h"
#include "support/table.h"
#include "support/target.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace tessarel::bench {

namespace {

using namespace std::chrono_literals;

constexpr int kDefaultRepetitions = 30;
constexpr Milliseconds kPatience = 2s;

/// Milliseconds since exec, one value per start.
struct Times {
    std::vector<double> ready;
    std::vector<double> firstAnswer; ///< empty for a program that does not move windows
};

/// A desktop with one window, and with the modifier keys held down.
class Desktop {
public:
    void start(const Resident& resident, Times& times);

private:
    void pressAtOnce(Clock::time_point begin, Times& times);

    Connection m_connection;
    Target m_target;
    Keyboard m_keyboard;
    std::uint8_t m_key = key::kDigit1; // differs from the zone that the window is in
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
    m_key = m_key == key::kDigit1 ? key::kDigit2 : key::kDigit1;
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

/// Starts every program `repetitions` times, in shuffled order.
std::vector<Times> timesOf(const std::vector<Resident>& programs, int repetitions) {
    Desktop desktop;
    std::vector<std::size_t> order;
    for (std::size_t program = 0; program < programs.size(); ++program) {
        Times unused; // the first start reads the files from disk
        desktop.start(programs[program], unused);
        order.insert(order.end(), static_cast<std::size_t>(repetitions), program);
    }
    std::mt19937 generator(20230610); // a fixed seed, so that the order is the same in every run
    std::ranges::shuffle(order, generator);

    std::vector<Times> times(programs.size());
    for (const auto program : order)
        desktop.start(programs[program], times[program]);
    return times;
}

/// Runs Tessarel with more or less to do after startup.
class Surroundings {
public:
    explicit Surroundings(std::string program) : m_program(std::move(program)) {
        const std::filesystem::path usual = std::getenv("XDG_CONFIG_HOME");
        std::filesystem::copy(usual / "tessarel", m_checked.path() / "tessarel");
        std::string settings = contentOf(m_checked.path() / kSettings);
        const auto now = std::chrono::system_clock::now().time_since_epoch();
        settings.insert(settings.find('{') + 1,
                        "\"lastUpdateCheck\": " +
                            std::to_string(std::chrono::duration_cast<std::chrono::seconds>(now).count()) +
                            ",");
        std::ofstream(m_checked.path() / kSettings) << settings;
    }

    /// Returns pairs of programs: the first of each pair is the baseline of the second.
    [[nodiscard]] std::vector<Resident> pairs() const {
        const std::string nothing = m_nothing.path();
        const std::string noneOfSystem = "XDG_DATA_DIRS=" + nothing;
        return {program("no program installed", {"XDG_DATA_HOME=" + nothing, noneOfSystem}),
                program("5,000 installed", {"XDG_DATA_HOME=" + m_many.dataHome().string(), noneOfSystem}),
                program("no update check due", {"XDG_CONFIG_HOME=" + m_checked.path().string()}),
                program("one due", {"XDG_CONFIG_HOME=" + std::string(std::getenv("XDG_CONFIG_HOME"))})};
    }

private:
    static constexpr const char* kSettings = "tessarel/tessarel.settings.v1.json";

    static std::string contentOf(const std::filesystem::path& file) {
        std::ifstream stream(file);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    [[nodiscard]] Resident program(std::string name, std::vector<std::string> environment) const {
        return {.name = std::move(name), .path = m_program, .environment = std::move(environment)};
    }

    std::string m_program;
    ScratchFolder m_nothing;
    ScratchFolder m_checked; // settings in which the last update check has just happened
    EntryFolder m_many{5000};
};

void reportPairs(const std::vector<Resident>& pairs, const std::vector<Times>& times, int repetitions) {
    Table table({"tessarel with", "measured", "ready p50 ms", "ready / without", "first answer p50 ms",
                 "first answer / without"});
    for (std::size_t with = 0; with < pairs.size(); ++with) {
        const std::size_t without = with - with % 2;
        const double ready = median(times[with].ready);
        const double answer = median(times[with].firstAnswer);
        table.add({pairs[with].name, std::to_string(times[with].ready.size()), number(ready, 1),
                   number(ready / median(times[without].ready)), number(answer, 1),
                   number(answer / median(times[without].firstAnswer))});
    }
    table.print("Start, with more to do, " + std::to_string(repetitions) + " starts each");
}

void measure(const std::string& directory, int repetitions) {
    const auto programs = residents(directory);
    report(programs, timesOf(programs, repetitions), repetitions);
    const Surroundings surroundings(programs.back().path);
    const auto pairs = surroundings.pairs();
    reportPairs(pairs, timesOf(pairs, repetitions), repetitions);
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
