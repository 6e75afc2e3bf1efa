// SPDX-License-Identifier: MIT

// Measures drags: how soon the highlight follows the pointer, the CPU time at a high pointer rate, whether
// motion without a drag wakes the program, and how much memory many drags leave behind. Needs openbox and no
// compositor.
//
//   drag DIRECTORY [DRAGS]

#include "support/clock.h"
#include "support/connection.h"
#include "support/process_figures.h"
#include "support/resident.h"
#include "support/statistics.h"
#include "support/table.h"
#include "support/target.h"

#include <xcb/shape.h>
#include <xcb/xtest.h>

#include <cstdint>
#include <cstdio>
#include <exception>
#include <functional>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace tessarel::bench {

namespace {

using namespace std::chrono_literals;

constexpr int kDefaultDrags = 500;
constexpr int kDragsToWarmUp = 50;
constexpr int kHighlights = 200;
constexpr auto kTimeToNotice = 50ms; ///< for the program to notice a press, even right after a placement
constexpr auto kFastMouse = 10s;
constexpr auto kPatience = 10s;
constexpr auto kPatienceWithPress = 2s;
constexpr int kTries = 5;
constexpr auto kTimeToSettle = 2s; ///< time for a program that has just grabbed its keys to finish starting
constexpr auto kRest = 500ms;      ///< a program that has used no CPU time for this long is at rest

struct Place {
    int x = 0;
    int y = 0;
};

// Points in two zones of bench/config that do not touch.
constexpr Place kLeft{100, 700};
constexpr Place kRight{1500, 200};

/// Sends pointer motion, button 1 and Shift with XTEST.
class Hand {
public:
    void moveTo(const Place& place) {
        fake(XCB_MOTION_NOTIFY, 0, place);
        m_place = place;
    }
    /// Moves the pointer by a few pixels, in alternating directions.
    void tremble() { moveTo({m_place.x + (m_place.x % 2 == 0 ? 5 : -5), m_place.y}); }
    void press() { fake(XCB_BUTTON_PRESS, 1); }
    void release() { fake(XCB_BUTTON_RELEASE, 1); }
    void holdShift() { fake(XCB_KEY_PRESS, kShift); }
    void releaseShift() { fake(XCB_KEY_RELEASE, kShift); }

private:
    static constexpr std::uint8_t kShift = 50;

    void fake(std::uint8_t type, std::uint8_t detail, const Place& place = {}) {
        xcb_test_fake_input(m_connection.get(), type, detail, XCB_CURRENT_TIME, m_connection.root(),
                            static_cast<std::int16_t>(place.x), static_cast<std::int16_t>(place.y), 0);
        m_connection.flush();
    }

    Connection m_connection;
    Place m_place;
};

bool becomesTrue(const std::function<bool()>& holds, Clock::duration patience) {
    const auto end = Clock::now() + patience;
    while (!holds()) {
        if (Clock::now() > end)
            return false;
        std::this_thread::sleep_for(2ms);
    }
    return true;
}

void await(const char* what, const std::function<bool()>& holds) {
    if (!becomesTrue(holds, kPatience))
        throw std::runtime_error(std::string("in vain: ") + what);
}

/// Finds the overlay window on the screen and watches its shape.
class OverlayWatch {
public:
    /// Returns the mapped override-redirect window that is as wide as the screen, or `XCB_NONE` if there is
    /// none.
    [[nodiscard]] xcb_window_t find() const {
        xcb_connection_t* const x = m_connection.get();
        const Received<xcb_query_tree_reply_t> tree(
            xcb_query_tree_reply(x, xcb_query_tree(x, m_connection.root()), nullptr));
        const xcb_window_t* const windows = xcb_query_tree_children(tree.get());
        for (int i = xcb_query_tree_children_length(tree.get()) - 1; i >= 0; --i) {
            if (isOverlay(windows[i]))
                return windows[i];
        }
        return XCB_NONE;
    }

    /// Selects ShapeNotify events of the overlay; drops those that have arrived so far.
    void watch(xcb_window_t overlay) const {
        xcb_shape_select_input(m_connection.get(), overlay, 1);
        m_connection.roundTrip();
        discard();
    }
    void discard() const {
        while (const Received<xcb_generic_event_t> event{xcb_poll_for_event(m_connection.get())}) {
        }
    }
    void awaitChange() const {
        await("a change of the overlay", [&] {
            const Received<xcb_generic_event_t> event(xcb_poll_for_event(m_connection.get()));
            return event != nullptr;
        });
    }
    /// Blocks until the next shape change and returns its time. Nothing else runs meanwhile that could delay
    /// it.
    [[nodiscard]] Clock::time_point nextChange() const {
        const Received<xcb_generic_event_t> event(xcb_wait_for_event(m_connection.get()));
        return Clock::now();
    }

private:
    [[nodiscard]] bool isOverlay(xcb_window_t window) const {
        xcb_connection_t* const x = m_connection.get();
        const auto attributesCookie = xcb_get_window_attributes(x, window);
        const auto geometryCookie = xcb_get_geometry(x, window);
        const Received<xcb_get_window_attributes_reply_t> attributes(
            xcb_get_window_attributes_reply(x, attributesCookie, nullptr));
        const Received<xcb_get_geometry_reply_t> geometry(xcb_get_geometry_reply(x, geometryCookie, nullptr));
        return attributes && geometry && attributes->override_redirect != 0 &&
               attributes->map_state == XCB_MAP_STATE_VIEWABLE &&
               geometry->width == m_connection.screen().width_in_pixels;
    }

    Connection m_connection;
};

/// Drags a window by its title bar with synthetic pointer events.
class Drags {
public:
    /// Presses the title bar, with Shift held, and drags until the overlay shows. Retries if the press was
    /// noticed too late, which happens on a busy machine.
    void begin() {
        for (int i = 0; i < kTries; ++i) {
            take();
            if (becomesTrue(
                    [&] {
                        m_hand.tremble();
                        return m_overlay.find() != XCB_NONE;
                    },
                    kPatienceWithPress))
                return;
            m_hand.release();
            m_hand.releaseShift();
            std::this_thread::sleep_for(kRest);
        }
        throw std::runtime_error("in vain: the overlay");
    }
    void end() {
        m_hand.release();
        await("the end of the overlay", [&] { return m_overlay.find() == XCB_NONE; });
        m_hand.releaseShift();
        await("the window in its zone", [&] { return m_target.frame().x == 0; });
    }

    /// Returns the milliseconds from moving the pointer into the other zone until the highlight changes
    /// there.
    [[nodiscard]] std::vector<double> highlights(int count) {
        std::vector<double> latencies;
        m_overlay.watch(m_overlay.find());
        for (int i = 0; i < count; ++i) {
            std::this_thread::sleep_for(30ms); // longer than the overlay's interval for coalescing
            m_overlay.discard();
            const auto start = Clock::now();
            m_hand.moveTo(i % 2 == 0 ? kRight : kLeft);
            latencies.push_back(Milliseconds(m_overlay.nextChange() - start).count());
        }
        return latencies;
    }

    /// Moves the pointer every millisecond, within one zone, for `length`. Returns the number of motions.
    int moveFast(Clock::duration length) {
        int count = 0;
        const auto start = Clock::now();
        for (auto next = start; next < start + length; next += 1ms) {
            std::this_thread::sleep_until(next);
            m_hand.moveTo({kLeft.x + count++ % 200, kLeft.y});
        }
        return count;
    }

private:
    void take() {
        const Frame frame = m_target.frame();
        m_aside = (m_aside + 40) % 120; // two presses at the same point would be a double click
        const Place grip{frame.x + frame.width / 2 + m_aside, frame.y + 8};
        m_hand.moveTo(grip);
        m_hand.press();
        std::this_thread::sleep_for(kTimeToNotice);
        m_hand.moveTo({grip.x + 30, grip.y + 30});
        m_hand.holdShift();
        m_hand.moveTo(kLeft);
    }

    Hand m_hand;
    OverlayWatch m_overlay;
    Target m_target;
    int m_aside = 0;
};

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

/// Waits until the process has used no CPU time for `kRest`. Returns the milliseconds until it last did.
double timeToRest(pid_t pid) {
    const auto start = Clock::now();
    auto last = start;
    for (auto cpu = cpuTime(pid); Clock::now() - last < kRest; std::this_thread::sleep_for(1ms)) {
        if (const auto now = cpuTime(pid); now != std::exchange(cpu, now))
            last = Clock::now();
    }
    return Milliseconds(last - start).count();
}

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
        const double rest = timeToRest(tessarel);
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
