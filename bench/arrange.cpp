// SPDX-License-Identifier: MIT

// Measures how long it takes to arrange all windows of a screen with one key press. The baseline is nine
// single placements by the minimal client `raw_xcb_client`.
//
//   arrange DIRECTORY [REPETITIONS]

#include "support/connection.h"
#include "support/keyboard.h"
#include "support/statistics.h"
#include "support/table.h"

#include <array>
#include <cstdio>
#include <exception>
#include <optional>
#include <poll.h>
#include <set>
#include <string>
#include <vector>

namespace tessarel::bench {

namespace {

using namespace std::chrono_literals;

constexpr int kDefaultRepetitions = 50;
constexpr auto kPatience = 1s;
constexpr auto kQuiet = 50ms;
constexpr std::size_t kWindows = 9;

/// One window per zone, none of them in a zone yet.
class Windows {
public:
    Windows();

    /// Moves all windows back to their initial frames.
    void scatter();
    /// Presses `key` and returns the milliseconds until the last ConfigureNotify of any window; empty if none
    /// comes.
    std::optional<double> press(std::uint8_t key);
    /// Returns how many windows moved at the last press.
    [[nodiscard]] std::size_t moved() const { return m_moved.size(); }

private:
    std::optional<Clock::time_point> untilQuiet();

    Connection m_connection;
    xcb_connection_t* m_x = m_connection.get();
    std::array<xcb_window_t, kWindows> m_windows{};
    std::set<xcb_window_t> m_moved;
    Keyboard m_keyboard;
};

std::array<std::uint32_t, 4> home(std::size_t window) {
    const auto step = static_cast<std::uint32_t>(window);
    return {60 + 70 * step, 50 + 40 * step, 400 + 5 * step, 300 + 5 * step};
}

Windows::Windows() {
    const std::uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    for (std::size_t i = 0; i < m_windows.size(); ++i) {
        m_windows[i] = xcb_generate_id(m_x);
        const auto [x, y, width, height] = home(i);
        xcb_create_window(m_x, XCB_COPY_FROM_PARENT, m_windows[i], m_connection.root(),
                          static_cast<std::int16_t>(x), static_cast<std::int16_t>(y),
                          static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height), 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
        xcb_map_window(m_x, m_windows[i]);
    }
    m_connection.roundTrip();
    (void)untilQuiet();
}

void Windows::scatter() {
    constexpr std::uint16_t kAll =
        XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT;
    for (std::size_t i = 0; i < m_windows.size(); ++i)
        xcb_configure_window(m_x, m_windows[i], kAll, home(i).data());
    m_connection.roundTrip();
    (void)untilQuiet();
}

std::optional<double> Windows::press(std::uint8_t key) {
    m_keyboard.holdModifiers();
    const auto pressed = m_keyboard.press(std::array{key});
    const auto last = untilQuiet();
    m_keyboard.release(key);
    if (!last)
        return std::nullopt;
    return Milliseconds(*last - pressed).count();
}

std::optional<Clock::time_point> Windows::untilQuiet() {
    std::optional<Clock::time_point> last;
    m_moved.clear();
    auto end = Clock::now() + kPatience;
    for (auto now = Clock::now(); now < end; now = Clock::now()) {
        while (const Received<xcb_generic_event_t> event{xcb_poll_for_event(m_x)}) {
            if ((event->response_type & 0x7F) != XCB_CONFIGURE_NOTIFY)
                continue;
            last = Clock::now();
            end = *last + kQuiet;
            m_moved.insert(reinterpret_cast<const xcb_configure_notify_event_t&>(*event).window);
        }
        pollfd socket{xcb_get_file_descriptor(m_x), POLLIN, 0};
        poll(&socket, 1, static_cast<int>(std::chrono::ceil<std::chrono::milliseconds>(end - now).count()));
    }
    return last;
}

void measure(const std::string& directory, int repetitions) {
    const ChildProcess tessarel({directory + "/tessarel"});
    const ChildProcess raw({directory + "/raw_xcb_client", std::to_string(key::kE), "0", "0", "800", "900"});
    waitUntilHeld(Connection(), std::array<Combination, 2>{{{key::kA, kControlAlt}, {key::kE, kControlAlt}}});

    Windows windows;
    std::vector<double> all;
    std::vector<double> single;
    for (int i = 0; i < repetitions; ++i)
        for (const auto& [key, times] : {std::pair{key::kA, &all}, std::pair{key::kE, &single}}) {
            windows.scatter();
            const auto time = windows.press(key);
            if (time && windows.moved() == (key == key::kA ? kWindows : 1))
                times->push_back(*time);
        }

    const double nine = median(single) * kWindows;
    Table table({"what", "measured", "p50 ms", "p95 ms", "p50 / nine single"});
    table.add({"tessarel, nine windows arranged", std::to_string(all.size()), number(median(all)),
               number(percentile(all, 95)), number(median(all) / nine)});
    table.add({"raw xcb client, one window", std::to_string(single.size()), number(median(single)),
               number(percentile(single, 95)), number(median(single) / nine)});
    table.print("Nine windows arranged at one press, to the last ConfigureNotify");
}

} // namespace

} // namespace tessarel::bench

int main(int count, char** arguments) {
    if (count < 2) {
        std::fprintf(stderr, "usage: arrange DIRECTORY [REPETITIONS]\n");
        return 2;
    }
    try {
        tessarel::bench::measure(arguments[1],
                                 count > 2 ? std::stoi(arguments[2]) : tessarel::bench::kDefaultRepetitions);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "arrange: %s\n", error.what());
        return 1;
    }
}
