// SPDX-License-Identifier: MIT

// Measures hot keys while another client floods the display with events: how long a press takes, whether one
// is lost, how soon the program is back to normal, whether SIGTERM still ends it, and how much memory the
// flood leaves behind.
//
//   flood DIRECTORY [PRESSES] [EVENTS_PER_SECOND]

#include "support/contenders.h"
#include "support/keyboard.h"
#include "support/process_figures.h"
#include "support/statistics.h"
#include "support/table.h"
#include "support/target.h"
#include "support/x11/event_flood.h"

#include <array>
#include <csignal>
#include <cstdio>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace tessarel::bench {

namespace {

using namespace std::chrono_literals;
using x11test::EventFlood;
using x11test::FloodKind;

constexpr int kDefaultPresses = 40;
constexpr int kDefaultRate = 20'000;
// More than openbox itself can handle would only measure its own queue.
constexpr int kChangesOfWindowsPerSecond = 2'000;
constexpr int kWindowsPerSecond = 200;
constexpr auto kTimeToSettle = 1s;
constexpr auto kHeadStart = 300ms; ///< how long a flood lasts before the first press
constexpr Milliseconds kPatience = 2s;
constexpr Milliseconds kPatienceForTheEnd = 20s;

struct Flood {
    std::string name;
    FloodKind kind;
    int perSecond;
};

std::vector<Flood> floods(int perSecond) {
    return {{"a root property", FloodKind::RootProperty, perSecond},
            {"_NET_ACTIVE_WINDOW", FloodKind::ActiveWindow, perSecond},
            {"_NET_CLIENT_LIST", FloodKind::ClientList, perSecond},
            {"_NET_WORKAREA", FloodKind::WorkArea, perSecond},
            {"a property of the window", FloodKind::WindowProperty, kChangesOfWindowsPerSecond},
            {"struts of a panel", FloodKind::WindowStrut, kChangesOfWindowsPerSecond},
            {"ConfigureNotify of the window, forged", FloodKind::ForgedConfigure, perSecond},
            {"presses of a hot key, forged", FloodKind::ForgedKeys, perSecond},
            {"windows opened and closed", FloodKind::Windows, kWindowsPerSecond},
            {"commands", FloodKind::Commands, perSecond}};
}

/// A panel without struts along the bottom, whose struts can be changed.
class Panel {
public:
    Panel() : m_window(xcb_generate_id(m_connection.get())) {
        xcb_connection_t* const x = m_connection.get();
        const xcb_atom_t dock = m_connection.atom("_NET_WM_WINDOW_TYPE_DOCK");
        constexpr std::array<std::uint32_t, 12> kNoStruts{};
        xcb_create_window(x, XCB_COPY_FROM_PARENT, m_window, m_connection.root(), 0, 890, 50, 10, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
        xcb_change_property(x, XCB_PROP_MODE_REPLACE, m_window, m_connection.atom("_NET_WM_WINDOW_TYPE"),
                            XCB_ATOM_ATOM, 32, 1, &dock);
        xcb_change_property(x, XCB_PROP_MODE_REPLACE, m_window, m_connection.atom("_NET_WM_STRUT_PARTIAL"),
                            XCB_ATOM_CARDINAL, 32, kNoStruts.size(), kNoStruts.data());
        xcb_map_window(x, m_window);
        m_connection.roundTrip();
    }

    [[nodiscard]] xcb_window_t window() const { return m_window; }

private:
    Connection m_connection;
    xcb_window_t m_window;
};

/// The presses of one contender during a flood.
struct Presses {
    std::vector<double> milliseconds;
    int lost = 0;
};

/// The desktop with the contenders and the window that their keys move.
class FloodedDesktop {
public:
    explicit FloodedDesktop(const std::string& directory)
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

    static constexpr std::size_t kOpenbox = 0;
    static constexpr std::size_t kRawClient = 1;
    static constexpr std::size_t kTessarel = 2;

    /// Moves the window to the other place with the key of a contender. Returns the milliseconds until it had
    /// its last new frame; empty if the press was lost.
    std::optional<double> press(std::size_t contender, Milliseconds patience) {
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
    bool press(std::size_t contender, Presses& presses) {
        if (const auto milliseconds = press(contender, kPatience)) {
            presses.milliseconds.push_back(*milliseconds);
            return true;
        }
        ++presses.lost;
        return press(kOpenbox, kPatienceForTheEnd).has_value();
    }

    [[nodiscard]] Target& target() { return m_target; }
    [[nodiscard]] const Panel& panel() const { return m_panel; }
    [[nodiscard]] ChildProcess& tessarel() { return m_tessarel; }

private:
    static constexpr std::array<std::array<std::uint8_t, 2>, 3> kKeys{
        {{key::kQ, key::kW}, {key::kE, key::kR}, {key::kLeft, key::kDown}}};

    ChildProcess m_rawClient;
    ChildProcess m_tessarel;
    Panel m_panel;
    Target m_target;
    Keyboard m_keyboard;
    std::array<ClientSize, 2> m_sizes{};
    std::size_t m_place = 1;
};

std::string milliseconds(const std::optional<double>& value) {
    return value ? number(*value, 1) : "over " + number(kPatienceForTheEnd.count(), 0);
}

/// Returns the milliseconds until the program has ended after SIGTERM, during the flood.
std::optional<double> endDuring(ChildProcess& program) {
    const auto start = Clock::now();
    program.signal(SIGTERM);
    const auto patience = std::chrono::duration_cast<std::chrono::milliseconds>(kPatienceForTheEnd);
    if (!program.waitForExit(x11test::Deadline(patience)))
        return std::nullopt;
    return Milliseconds(Clock::now() - start).count();
}

void measure(const std::string& directory, const Flood& flood, int count, Table& table) {
    FloodedDesktop desktop(directory);
    const xcb_window_t window =
        flood.kind == FloodKind::WindowStrut ? desktop.panel().window() : desktop.target().window();
    const Memory before = memory(desktop.tessarel().pid());
    std::array<Presses, 3> presses;
    auto source = std::make_unique<EventFlood>("", flood.kind, flood.perSecond, window);
    const auto start = Clock::now();
    std::this_thread::sleep_for(kHeadStart);
    bool isMeasurable = true;
    for (int i = 0; i < count && isMeasurable; ++i)
        for (std::size_t contender = 0; contender < presses.size() && isMeasurable; ++contender)
            isMeasurable = desktop.press(contender, presses.at(contender));
    const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
    const auto rate = static_cast<double>(source->sent()) / seconds;
    source.reset();
    const auto recovery = desktop.press(FloodedDesktop::kTessarel, kPatienceForTheEnd);
    const Memory after = memory(desktop.tessarel().pid());

    source = std::make_unique<EventFlood>("", flood.kind, flood.perSecond, window);
    std::this_thread::sleep_for(kHeadStart);
    const auto end = endDuring(desktop.tessarel());

    const auto p95 = [&](std::size_t contender) {
        return percentile(presses.at(contender).milliseconds, 95);
    };
    const double ours = p95(FloodedDesktop::kTessarel);
    table.add({flood.name, number(rate, 0), number(p95(FloodedDesktop::kOpenbox), 1),
               number(p95(FloodedDesktop::kRawClient), 1), number(ours, 1),
               number(ours / p95(FloodedDesktop::kOpenbox)), number(ours / p95(FloodedDesktop::kRawClient)),
               std::to_string(presses[FloodedDesktop::kTessarel].lost), milliseconds(recovery),
               milliseconds(end), std::to_string(after.anonymous - before.anonymous)});
}

void measureAll(const std::string& directory, int count, int perSecond) {
    Table table({"flood", "events / s", "openbox p95 ms", "raw client p95 ms", "tessarel p95 ms", "/ openbox",
                 "/ raw", "lost", "first press afterwards ms", "SIGTERM to exit ms",
                 "growth of anonymous KiB"});
    for (const Flood& flood : floods(perSecond))
        measure(directory, flood, count, table);
    table.print("Key press to placed window during a flood of events, " + std::to_string(count) +
                " presses each");
}

} // namespace

} // namespace tessarel::bench

int main(int count, char** arguments) {
    if (count < 2) {
        std::fprintf(stderr, "usage: flood DIRECTORY [PRESSES] [EVENTS_PER_SECOND]\n");
        return 2;
    }
    try {
        tessarel::bench::measureAll(arguments[1],
                                    count > 2 ? std::stoi(arguments[2]) : tessarel::bench::kDefaultPresses,
                                    count > 3 ? std::stoi(arguments[3]) : tessarel::bench::kDefaultRate);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "flood: %s\n", error.what());
        return 1;
    }
}
