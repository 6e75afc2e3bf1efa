// SPDX-License-Identifier: MIT

#include "support/process_figures.h"

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <thread>
#include <utility>

namespace tessarel::bench {

namespace {

using Path = std::filesystem::path;

Path directory(pid_t pid) {
    return Path("/proc") / std::to_string(pid);
}

/// Returns the number after "`name`:" in a file with lines such as "Pss:   123 kB", or 0 if there is no such
/// line.
long field(const Path& file, const std::string& name) {
    std::ifstream lines(file);
    std::string line;
    while (std::getline(lines, line))
        if (line.starts_with(name + ":"))
            return std::stol(line.substr(name.size() + 1));
    return 0;
}

long sumOverThreads(pid_t pid, const std::function<long(const Path&)>& figure) {
    long sum = 0;
    for (const auto& thread : std::filesystem::directory_iterator(directory(pid) / "task"))
        sum += figure(thread.path());
    return sum;
}

} // namespace

std::chrono::nanoseconds cpuTime(pid_t pid) {
    return std::chrono::nanoseconds(sumOverThreads(pid, [](const Path& thread) {
        long onProcessor = 0;
        std::ifstream(thread / "schedstat") >> onProcessor;
        return onProcessor;
    }));
}

long voluntarySwitches(pid_t pid) {
    return sumOverThreads(
        pid, [](const Path& thread) { return field(thread / "status", "voluntary_ctxt_switches"); });
}

Clock::duration timeToRest(pid_t pid) {
    using namespace std::chrono_literals;
    constexpr auto kRest = 500ms;
    const auto start = Clock::now();
    auto last = start;
    for (auto cpu = cpuTime(pid); Clock::now() - last < kRest; std::this_thread::sleep_for(1ms)) {
        if (const auto now = cpuTime(pid); now != std::exchange(cpu, now))
            last = Clock::now();
    }
    return last - start;
}

std::size_t descriptors(pid_t pid) {
    const std::filesystem::directory_iterator open(directory(pid) / "fd");
    return static_cast<std::size_t>(std::distance(begin(open), end(open)));
}

Memory memory(pid_t pid) {
    const auto file = directory(pid) / "smaps_rollup";
    return {field(file, "Rss"), field(file, "Pss"), field(file, "Anonymous")};
}

} // namespace tessarel::bench
