// SPDX-License-Identifier: MIT

#include "support/flooded_desktop.h"

#include "support/contenders.h"
#include "support/process_figures.h"
#include "support/statistics.h"

#include <csignal>
#include <cstdio>
#include <exception>
#include <thread>

namespace tessarel::bench {

namespace {

using namespace std::chrono_literals;

constexpr int kDefaultPresses = 40;
constexpr int kDefaultPerSecond = 20'000;
constexpr auto kTimeToSettle = 1s;
constexpr auto kHeadStart = 300ms; ///< how long a flood lasts before the first press
constexpr Milliseconds kPatience = 2s;
constexpr Milliseconds kPatienceForTheEnd = 20s;

constexpr std::size_t kOpenbox = 0;
constexpr std::size_t kRawClient = 1;
constexpr std::size_t kTessarel = 2;
constexpr std::array<std::array<std::uint8_t, 2>, 3> kKeys{
    {{key::kQ, key::kW}, {key::kE, key::kR}, {key::kLeft, key::kDown}}};

std::string milliseconds(const std::optional<double>& value) {
    return value ? number(*value, 1) : "over " + number(kPatienceForTheEnd.count(), 0);
}

} // namespace

int runFloodProgram(int count, char** arguments, const MeasureFloods& measureAll) {
    if (count < 2) {
        std::fprintf(stderr, "usage: %s DIRECTORY [PRESSES] [MESSAGES_PER_SECOND]\n", arguments[0]);
        return 2;
    }
    try {
        measureAll(arguments[1], count > 2 ? std::stoi(arguments[2]) : kDefaultPresses,
                   count > 3 ? std::stoi(arguments[3]) : kDefaultPerSecond);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s: %s\n", arguments[0], error.what());
        return 1;
    }
    return 0;
}

Table floodTable() {
    return Table({"flood", "per second", "openbox p95 ms", "raw client p95 ms", "tessarel p95 ms",
                  "/ openbox", "/ raw", "lost", "first press afterwards ms", "SIGTERM to exit ms",
                  "growth of anonymous KiB"});
}

FloodedDesktop::FloodedDesktop(const std::string& directory)
    : m_rawClient(rawClientCommand(directory)), m_tessarel({directory + "/tessarel"}) {
    std::vector<Combination> wanted;
    for (const auto& keys : kKeys)
        for (const auto key : keys)
            wanted.push_back({key, kControlAlt});
    waitUntilHeld(Connection(), wanted);
    std::this_thread::sleep_for(kTimeToSettle);
    for (const std::size_t place : {0U, 1U}) {
        m_keyboard.holdModifiers();
        m_keyboard.press(std::array{kKeys[kOpenbox][place]});
        (void)m_target.untilQuiet(kPatience);
        m_keyboard.release(kKeys[kOpenbox][place]);
        m_sizes[place] = m_target.clientSize();
    }
}

void FloodedDesktop::measure(const std::string& name, int count, const StartFlood& startFlood, Table& table) {
    const Memory before = memory(m_tessarel.pid());
    std::array<Presses, kKeys.size()> presses;
    auto flood = startFlood();
    const auto start = Clock::now();
    std::this_thread::sleep_for(kHeadStart);
    bool isMeasurable = true;
    for (int i = 0; i < count && isMeasurable; ++i)
        for (std::size_t contender = 0; contender < presses.size() && isMeasurable; ++contender)
            isMeasurable = press(contender, presses.at(contender));
    const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
    const auto rate = static_cast<double>(flood->sent()) / seconds;
    flood.reset();
    const auto recovery = press(kTessarel, kPatienceForTheEnd);
    const Memory after = memory(m_tessarel.pid());

    flood = startFlood();
    std::this_thread::sleep_for(kHeadStart);
    const auto toExit = end();

    const auto p95 = [&](std::size_t contender) {
        return percentile(presses.at(contender).milliseconds, 95);
    };
    const double ours = p95(kTessarel);
    table.add({name, number(rate, 0), number(p95(kOpenbox), 1), number(p95(kRawClient), 1), number(ours, 1),
               number(ours / p95(kOpenbox)), number(ours / p95(kRawClient)),
               std::to_string(presses[kTessarel].lost), milliseconds(recovery), milliseconds(toExit),
               std::to_string(after.anonymous - before.anonymous)});
}

/// Moves the window to the other place with the key of a contender. Returns the milliseconds until it had its
/// last new frame; empty if the press was lost.
std::optional<double> FloodedDesktop::press(std::size_t contender, Milliseconds patience) {
    const std::size_t place = 1 - m_place;
    const auto key = kKeys.at(contender)[place];
    m_keyboard.holdModifiers();
    m_target.discardEvents();
    const auto pressed = m_keyboard.press(std::array{key});
    const auto placed = m_target.untilOfSize(m_sizes[place], patience);
    m_keyboard.release(key);
    if (!placed)
        return std::nullopt;
    m_place = place;
    return Milliseconds(*placed - pressed).count();
}

/// Presses the key of a contender and adds the result to `presses`. After a lost press, openbox moves the
/// window. Returns false if not even that works, because openbox does not keep up with the flood.
bool FloodedDesktop::press(std::size_t contender, Presses& presses) {
    if (const auto milliseconds = press(contender, kPatience)) {
        presses.milliseconds.push_back(*milliseconds);
        return true;
    }
    ++presses.lost;
    return press(kOpenbox, kPatienceForTheEnd).has_value();
}

/// Returns the milliseconds until Tessarel has exited after SIGTERM; empty if it has not.
std::optional<double> FloodedDesktop::end() {
    const auto start = Clock::now();
    m_tessarel.signal(SIGTERM);
    const auto patience = std::chrono::duration_cast<std::chrono::milliseconds>(kPatienceForTheEnd);
    if (!m_tessarel.waitForExit(x11test::Deadline(patience)))
        return std::nullopt;
    return Milliseconds(Clock::now() - start).count();
}

} // namespace tessarel::bench
