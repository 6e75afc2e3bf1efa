// SPDX-License-Identifier: MIT

#include "plasma/parts.h"
#include "support/clock.h"
#include "support/process_figures.h"
#include "support/resident.h"
#include "support/statistics.h"
#include "support/table.h"

#include <csignal>
#include <functional>
#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

namespace tessarel::bench {

namespace {

using namespace std::chrono_literals;
using plasmatest::Drawing;
using plasmatest::PlasmaSession;
using x11test::ChildProcess;

constexpr auto kTimeToSettle = 5s;
constexpr auto kStartTimeout = 10s;
constexpr auto kTimeToForget = 300ms; ///< time for the desktop to finish what the end of the program causes

/// A desktop, and how to start the program there: returns it once it has registered its hot keys.
struct Desktop {
    std::string name;
    std::function<std::unique_ptr<ChildProcess>()> start;
};

std::unique_ptr<ChildProcess> startOnPlasma(PlasmaSession& session, const std::string& program) {
    auto started = std::make_unique<ChildProcess>(std::vector{program}, session.environment());
    const auto end = Clock::now() + kStartTimeout;
    while (session.keysOf("arrangeAll").empty()) { // the last one
        if (Clock::now() > end)
            throw std::runtime_error("the program does not start: " + started->errors());
        std::this_thread::sleep_for(1ms);
    }
    return started;
}

void finish(ChildProcess& program) {
    program.signal(SIGTERM);
    if (!program.waitForExit())
        throw std::runtime_error("the program does not exit");
}

double startTime(const Desktop& desktop) {
    const auto begin = Clock::now();
    const auto program = desktop.start();
    const double taken = Milliseconds(Clock::now() - begin).count();
    finish(*program);
    std::this_thread::sleep_for(kTimeToForget);
    return taken;
}

struct Rest {
    Memory memory;
    long switches = 0;
    std::chrono::nanoseconds cpu{};
};

Rest restOf(const Desktop& desktop, std::chrono::seconds length) {
    const auto program = desktop.start();
    std::this_thread::sleep_for(kTimeToSettle);
    const long switches = voluntarySwitches(program->pid());
    const auto cpu = cpuTime(program->pid());
    std::this_thread::sleep_for(length);
    const Rest rest{memory(program->pid()), voluntarySwitches(program->pid()) - switches,
                    cpuTime(program->pid()) - cpu};
    finish(*program);
    return rest;
}

} // namespace

void measureAtRest(const std::filesystem::path& programs, int starts, std::chrono::seconds length) {
    const std::string program = programs / "tessarel";
    const Connection connection;
    PlasmaSession session(Drawing::OpenGl); // as on most desktops; otherwise modifiers are looked for in vain
    session.writeSettings(R"({"hasOnboarded":true,"rememberApps":false})");
    const std::vector<Desktop> desktops{{"X11",
                                         [&] {
                                             return startAndAwait({"tessarel", program}, connection);
                                         }},
                                        {"Plasma", [&] { return startOnPlasma(session, program); }}};
    std::vector<std::vector<double>> times(desktops.size());
    for (int i = 0; i <= starts; ++i) {
        for (std::size_t desktop = 0; desktop < desktops.size(); ++desktop) {
            const double taken = startTime(desktops[desktop]);
            if (i > 0) // the first start reads the files from disk
                times[desktop].push_back(taken);
        }
    }

    Table table({"desktop", "start to keys p50 ms", "p50 / X11", "RSS KiB", "RSS / X11", "PSS KiB",
                 "anonymous KiB", "voluntary switches", "CPU ms"});
    long residentOnX11 = 0;
    for (std::size_t desktop = 0; desktop < desktops.size(); ++desktop) {
        const auto [used, switches, cpu] = restOf(desktops[desktop], length);
        if (desktop == 0)
            residentOnX11 = used.resident;
        table.add({desktops[desktop].name, number(median(times[desktop]), 1),
                   number(median(times[desktop]) / median(times.front())), std::to_string(used.resident),
                   number(static_cast<double>(used.resident) / static_cast<double>(residentOnX11)),
                   std::to_string(used.proportional), std::to_string(used.anonymous),
                   std::to_string(switches), number(Milliseconds(cpu).count())});
    }
    table.print("Start, " + std::to_string(starts) + " times each, and " + std::to_string(length.count()) +
                " s at rest");
}

} // namespace tessarel::bench
