// SPDX-License-Identifier: MIT

// Measures an idle program: memory, wake-ups and CPU time.
//
//   idle DIRECTORY [SECONDS]

#include "support/clock.h"
#include "support/process_figures.h"
#include "support/resident.h"
#include "support/table.h"

#include <cstdio>
#include <exception>
#include <thread>

namespace tessarel::bench {

namespace {

using namespace std::chrono_literals;

constexpr int kDefaultSeconds = 20;
constexpr auto kTimeToSettle = 2s;

struct Figures {
    Memory memory;
    long switches = 0;
    std::chrono::nanoseconds cpu{};
};

/// Measures one program at a time, because a page shared by two programs counts half for each. Other programs
/// may share pages for a while, so the highest PSS counts. Reading /proc does not wake the program.
Figures observe(const Resident& resident, const Connection& connection, std::chrono::seconds length) {
    const auto program = startAndAwait(resident, connection);
    std::this_thread::sleep_for(kTimeToSettle);
    Figures figures{{}, -voluntarySwitches(program->pid()), -cpuTime(program->pid())};
    for (auto second = 0s; second < length; ++second) {
        std::this_thread::sleep_for(1s);
        const auto now = memory(program->pid());
        if (now.proportional > figures.memory.proportional)
            figures.memory = now;
    }
    figures.switches += voluntarySwitches(program->pid());
    figures.cpu += cpuTime(program->pid());
    return figures;
}

void measure(const std::string& directory, std::chrono::seconds length) {
    const Connection connection;
    Table table({"program", "PSS KiB", "PSS / empty", "RSS KiB", "RSS / empty", "anonymous KiB",
                 "voluntary switches", "CPU ms"});
    Memory empty;
    for (const auto& resident : residents(directory)) {
        const auto [used, switches, cpu] = observe(resident, connection, length);
        if (empty.proportional == 0)
            empty = used;
        const auto ratio = [](long some, long base) {
            return number(static_cast<double>(some) / static_cast<double>(base));
        };
        table.add({resident.name, std::to_string(used.proportional),
                   ratio(used.proportional, empty.proportional), std::to_string(used.resident),
                   ratio(used.resident, empty.resident), std::to_string(used.anonymous),
                   std::to_string(switches), number(Milliseconds(cpu).count())});
    }
    table.print("Memory alone, and " + std::to_string(length.count()) + " s of idling");
}

} // namespace

} // namespace tessarel::bench

int main(int count, char** arguments) {
    if (count < 2) {
        std::fprintf(stderr, "usage: idle DIRECTORY [SECONDS]\n");
        return 2;
    }
    try {
        tessarel::bench::measure(
            arguments[1],
            std::chrono::seconds(count > 2 ? std::stoi(arguments[2]) : tessarel::bench::kDefaultSeconds));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "idle: %s\n", error.what());
        return 1;
    }
}
