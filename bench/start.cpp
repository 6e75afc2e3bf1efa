// From exec to readiness: Tessarel holding all its keys against an empty Qt tray program in its loop.
//
//   start DIRECTORY [REPETITIONS]

#include "support/clock.h"
#include "support/resident.h"
#include "support/statistics.h"
#include "support/table.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <random>

namespace tessarel::bench {

namespace {

constexpr int kDefaultRepetitions = 30;

void measure(const std::string& directory, int repetitions) {
    const Connection connection;
    const auto programs = residents(directory);
    std::vector<std::size_t> order;
    for (std::size_t program = 0; program < programs.size(); ++program) {
        (void)startAndAwait(programs[program], connection); // unmeasured: the files come from the disk
        order.insert(order.end(), static_cast<std::size_t>(repetitions), program);
    }
    std::mt19937 generator(20230610); // any fixed number: the same order in every run
    std::ranges::shuffle(order, generator);

    std::vector<std::vector<double>> times(programs.size());
    for (const auto program : order) {
        const auto begin = Clock::now();
        const auto running = startAndAwait(programs[program], connection);
        times[program].push_back(Milliseconds(Clock::now() - begin).count());
    }

    Table table({"program", "p50 ms", "p95 ms", "p50 / empty"});
    for (std::size_t program = 0; program < programs.size(); ++program)
        table.add({programs[program].name, number(median(times[program]), 1),
                   number(percentile(times[program], 95), 1),
                   number(median(times[program]) / median(times.front()))});
    table.print("Start, exec to ready, " + std::to_string(repetitions) + " starts each");
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
