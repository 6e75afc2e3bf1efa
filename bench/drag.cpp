// SPDX-License-Identifier: MIT

// Measures drags: how soon the highlight follows the pointer, the CPU time at a high pointer rate, whether
// motion without a drag wakes the program, and how much memory many drags leave behind. Needs openbox and no
// compositor.
//
//   drag DIRECTORY [DRAGS]

#include "support/await.h"
#include "support/clock.h"
#include "support/drags.h"
#include "support/process_figures.h"
#include "support/resident.h"
#include "support/statistics.h"
#include "support/table.h"

#include <cstdio>
#include <exception>
#include <string>
#include <thread>

namespace tessarel::bench {

namespace {

using namespace std::chrono_literals;

constexpr int kDefaultDrags = 500;
constexpr int kDragsToWarmUp = 50;
constexpr int kHighlights = 200;
constexpr auto kFastMouse = 10s;
constexpr auto kTimeToSettle = 2s; ///< time for a program that has just grabbed its keys to finish starting

/// Measures the CPU time and the context switches of a process since construction.
class Meter {
public:
    explicit Meter(pid_t pid) : m_pid(pid), m_cpu(cpuTime(pid)), m_switches(voluntarySwitches(pid)) {}

    [[nodiscard]] double cpuMicroseconds() const {
        return Milliseconds(cpuTime(m_pid) - m_cpu).count() * 1000;
    }
    [[nodiscard]] long switches() const { return voluntarySwitches(m_pid) - m_switches; }

private:
    pid_t m_pid;
    std::chrono::nanoseconds m_cpu;
    long m_switches;
};

void measureHighlight(Drags& drags) {
    drags.begin();
    const auto latencies = drags.highlights(kHighlights);
    drags.end();
    Table table({"what", "p50 ms", "p95 ms", "p99 ms"});
    table.add({"pointer to highlighted zone", number(percentile(latencies, 50)),
               number(percentile(latencies, 95)), number(percentile(latencies, 99))});
    table.print("A zone is highlighted (" + std::to_string(kHighlights) + " times, without a compositor)");
}

void measureFastMouse(Drags& drags, pid_t tessarel, pid_t bare) {
    Table table({"mouse at 1,000 Hz", "events", "Tessarel CPU us / event", "bare client CPU us / event",
                 "ratio", "Tessarel wake-ups", "at rest after ms"});
    for (const bool isDrag : {true, false}) {
        if (isDrag)
            drags.begin();
        (void)timeToRest(tessarel);
        const Meter ofTessarel(tessarel);
        const Meter ofBare(bare);
        const int events = drags.moveFast(kFastMouse);
        const double rest = Milliseconds(timeToRest(tessarel)).count();
        const double ours = ofTessarel.cpuMicroseconds() / events;
        const double theirs = ofBare.cpuMicroseconds() / events;
        table.add({isDrag ? "in a drag" : "without a button", std::to_string(events), number(ours),
                   number(theirs), number(ours / theirs), std::to_string(ofTessarel.switches()),
                   number(rest)});
        if (isDrag)
            drags.end();
    }
    table.print("A fast mouse, for 10 s each");
}

void measureManyDrags(Drags& drags, pid_t tessarel, int count) {
    const auto dragTimes = [&](int times) {
        for (int i = 0; i < times; ++i) {
            drags.begin();
            drags.end();
        }
        return memory(tessarel);
    };
    const Memory before = dragTimes(kDragsToWarmUp);
    const Memory after = dragTimes(count);
    Table table({"drags", "RSS KiB", "growth of RSS KiB", "growth of anonymous KiB"});
    table.add({std::to_string(count), std::to_string(after.resident),
               std::to_string(after.resident - before.resident),
               std::to_string(after.anonymous - before.anonymous)});
    table.print("What many drags leave behind, after the first " + std::to_string(kDragsToWarmUp));
}

void measure(const std::string& directory, int count) {
    const Connection connection;
    const auto tessarel = startAndAwait(residents(directory).back(), connection);
    ChildProcess bare({directory + "/raw_pointer_client"});
    await("the bare client", [&] { return bare.hasOutput(); });
    std::this_thread::sleep_for(kTimeToSettle);
    Drags drags;
    measureHighlight(drags);
    measureFastMouse(drags, tessarel->pid(), bare.pid());
    measureManyDrags(drags, tessarel->pid(), count);
}

} // namespace

} // namespace tessarel::bench

int main(int count, char** arguments) {
    if (count < 2) {
        std::fprintf(stderr, "usage: drag DIRECTORY [DRAGS]\n");
        return 2;
    }
    try {
        tessarel::bench::measure(arguments[1],
                                 count > 2 ? std::stoi(arguments[2]) : tessarel::bench::kDefaultDrags);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "drag: %s\n", error.what());
        return 1;
    }
}
