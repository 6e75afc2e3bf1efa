// SPDX-License-Identifier: MIT

// Uses the program for as long as months of work, and measures what that leaves behind: memory, file
// descriptors, X resources, wake-ups. Needs openbox, no compositor and the settings of bench/config.
//
//   endurance DIRECTORY TINT2_CONFIG [DIVISOR [KIND]]
//
// DIVISOR shortens the run: with 10, everything is done a tenth as often. KIND restricts it to the rows of
// the table whose name contains this word.

#include "support/await.h"
#include "support/clicker.h"
#include "support/clock.h"
#include "support/drags.h"
#include "support/keyboard.h"
#include "support/pager.h"
#include "support/process_figures.h"
#include "support/resident.h"
#include "support/table.h"
#include "support/target.h"
#include "support/tray.h"
#include "support/x_resources.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace tessarel::bench {

namespace {

using namespace std::chrono_literals;

constexpr auto kTimeToSettle = 2s;
constexpr auto kIdle = 10s;
constexpr Milliseconds kPatienceWithKey = 5s;

/// Runs a program to its end and returns its output.
std::string outputOf(const std::vector<std::string>& command) {
    ChildProcess program(command);
    std::string output;
    while (const auto line = program.nextLine())
        output += *line + '\n';
    (void)program.waitForExit();
    return output;
}

/// What a user does with the program, each thing as often as asked.
class Work {
public:
    Work(std::string directory, pid_t tessarel, const Place& icon)
        : m_directory(std::move(directory)), m_tessarel(tessarel), m_clicker(icon) {}

    /// Presses the keys of the left and the lower half in turns; each press has to move the window.
    void pressKeys(int times) {
        Target target;
        std::array<std::optional<ClientSize>, 2> sizes;
        m_keyboard.holdModifiers();
        for (int i = 0; i < times; ++i) {
            const auto place = static_cast<std::size_t>(i % 2);
            const ClientSize before = target.clientSize();
            m_keyboard.tap(place == 0 ? key::kLeft : key::kDown);
            const auto isPlaced = [&] {
                const ClientSize now = target.clientSize();
                return sizes.at(place) ? now == *sizes.at(place) : now != before;
            };
            m_lostKeys += holdsSoon(isPlaced) ? 0 : 1;
            sizes.at(place) = target.clientSize();
        }
        m_keyboard.releaseModifiers();
    }

    void drag(int times) {
        Drags drags;
        for (int i = 0; i < times; ++i) {
            drags.begin();
            drags.end();
        }
    }

    /// Starts the program once more each time, which opens the settings window, and closes the window.
    void openSettings(int times) {
        for (int i = 0; i < times; ++i) {
            const ChildProcess second({m_directory + "/tessarel"});
            const xcb_window_t settings = m_pager.awaitWindowOf("tessarel");
            m_pager.close(settings);
            await("the end of the settings window", [&] { return !m_pager.isShown(settings); });
        }
    }

    /// The buttons alternate, because a second click with the same one would be a double click. A click that
    /// comes before the closing menu has given the mouse back would be lost.
    void openMenu(int times) {
        m_clicker.point();
        for (int i = 0; i < times; ++i) {
            (void)m_clicker.click(i % 2 == 0 ? Clicker::kLeftButton : Clicker::kRightButton);
            std::this_thread::sleep_for(50ms);
        }
    }

    /// Divides the screen into two monitors and joins them again, and waits until the program has noticed.
    void changeDisplays(int times) {
        for (int i = 0; i < times; ++i) {
            if (i % 2 == 0)
                (void)outputOf({"xrandr", "--setmonitor", "left", "800/200x900/200+0+0", "screen"});
            else
                (void)outputOf({"xrandr", "--delmonitor", "left"});
            const std::string& displays = m_displays.at(static_cast<std::size_t>(i % 2));
            await("the displays", [&] {
                const std::string now = outputOf({m_directory + "/launcher/tessarel", "list", "displays"});
                return displays.empty() ? now != m_displays.at(1) : now == displays;
            });
        }
    }

    /// Opens windows, ten at a time, and closes them again.
    void openWindows(int times) {
        constexpr int kAtATime = 10;
        const Connection connection;
        for (int done = 0; done < times; done += kAtATime) {
            std::vector<xcb_window_t> windows;
            for (int i = 0; i < std::min(kAtATime, times - done); ++i)
                windows.push_back(openWindow(connection));
            await("the windows", [&] {
                return std::ranges::all_of(windows,
                                           [&](xcb_window_t window) { return m_pager.lists(window); });
            });
            for (const xcb_window_t window : windows)
                xcb_destroy_window(connection.get(), window);
            connection.flush();
            await("the end of the windows", [&] { return !m_pager.lists(windows.back()); });
        }
    }

    /// Remembers how the displays are listed before they change.
    void noteDisplays() {
        m_displays.at(1) = outputOf({m_directory + "/launcher/tessarel", "list", "displays"});
    }

    [[nodiscard]] int lostKeys() const { return m_lostKeys; }

private:
    static bool holdsSoon(const std::function<bool()>& holds) {
        const auto end = Clock::now() + kPatienceWithKey;
        while (!holds()) {
            if (Clock::now() > end)
                return false;
            std::this_thread::sleep_for(300us);
        }
        return true;
    }

    static xcb_window_t openWindow(const Connection& connection) {
        xcb_connection_t* const x = connection.get();
        const xcb_window_t window = xcb_generate_id(x);
        constexpr std::string_view kClass("endurance\0Endurance\0", 20);
        xcb_create_window(x, XCB_COPY_FROM_PARENT, window, connection.root(), 300, 200, 400, 300, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
        xcb_change_property(x, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8,
                            static_cast<std::uint32_t>(kClass.size()), kClass.data());
        xcb_map_window(x, window);
        connection.flush();
        return window;
    }

    std::string m_directory;
    pid_t m_tessarel;
    Pager m_pager;
    Keyboard m_keyboard;
    Clicker m_clicker;
    std::array<std::string, 2> m_displays; ///< as the program lists them: divided, joined
    int m_lostKeys = 0;
};

struct Figures {
    Memory memory;
    std::size_t descriptors = 0;
    XResources resources;
};

Figures figuresAtRest(const Connection& connection, pid_t pid) {
    (void)timeToRest(pid);
    return {memory(pid), descriptors(pid), resourcesOf(connection, pid)};
}

struct Kind {
    std::string name;
    void (Work::*work)(int times);
    int times;
};

void printEnd(pid_t pid, const Figures& start, const Figures& end) {
    const long switches = voluntarySwitches(pid);
    std::this_thread::sleep_for(kIdle);
    Table table({"", "on startup", "at the end", "difference"});
    table.add({"file descriptors", std::to_string(start.descriptors), std::to_string(end.descriptors),
               std::to_string(static_cast<long>(end.descriptors) - static_cast<long>(start.descriptors))});
    table.add({"X resources", std::to_string(total(start.resources)), std::to_string(total(end.resources)),
               difference(start.resources, end.resources)});
    table.add({"RSS KiB", std::to_string(start.memory.resident), std::to_string(end.memory.resident),
               std::to_string(end.memory.resident - start.memory.resident)});
    table.add({"wake-ups in " + std::to_string(kIdle.count()) + " s", "-",
               std::to_string(voluntarySwitches(pid) - switches), "-"});
    table.print("The program before and after everything");
}

void measure(const std::string& directory, const std::string& panelConfig, int divisor,
             const std::string& wanted) {
    constexpr int kFirstPart = 100;
    const std::array kinds = {Kind{"keys", &Work::pressKeys, 100'000},
                              Kind{"drags", &Work::drag, 10'000},
                              Kind{"openings of the settings", &Work::openSettings, 1'000},
                              Kind{"openings of the menu", &Work::openMenu, 1'000},
                              Kind{"changes of displays", &Work::changeDisplays, 1'000},
                              Kind{"windows", &Work::openWindows, 10'000}};
    const Connection connection;
    const Tray tray(panelConfig);
    const auto tessarel = startAndAwait(residents(directory).back(), connection);
    const pid_t pid = tessarel->pid();
    Work work(directory, pid, tray.awaitIcon("tessarel"));
    std::this_thread::sleep_for(kTimeToSettle);
    work.noteDisplays();
    const Figures start = figuresAtRest(connection, pid);

    Table table(
        {"what", "times", "s", "growth of RSS KiB", "of anonymous KiB", "of descriptors", "of X resources"});
    Figures after;
    for (const Kind& kind : kinds) {
        if (kind.name.find(wanted) == std::string::npos)
            continue;
        const int times = kind.times / divisor;
        const int first = std::max(2, times / kFirstPart / 2 * 2); // even, as displays alternate
        const auto begin = Clock::now();
        (work.*kind.work)(first);
        const Figures before = figuresAtRest(connection, pid);
        (work.*kind.work)(times - first);
        after = figuresAtRest(connection, pid);
        table.add(
            {kind.name, std::to_string(times),
             number(std::chrono::duration<double>(Clock::now() - begin).count(), 0),
             std::to_string(after.memory.resident - before.memory.resident),
             std::to_string(after.memory.anonymous - before.memory.anonymous),
             std::to_string(static_cast<long>(after.descriptors) - static_cast<long>(before.descriptors)),
             difference(before.resources, after.resources)});
        std::fprintf(stderr, "endurance: %s done, %ld KiB more RSS\n", kind.name.c_str(),
                     after.memory.resident - before.memory.resident);
    }
    table.print("What long use leaves behind, after the first hundredth of each row");
    std::printf("Keys without an effect: %d\n\n", work.lostKeys());
    printEnd(pid, start, after);
}

} // namespace

} // namespace tessarel::bench

int main(int count, char** arguments) {
    if (count < 3) {
        std::fprintf(stderr, "usage: endurance DIRECTORY TINT2_CONFIG [DIVISOR [KIND]]\n");
        return 2;
    }
    try {
        tessarel::bench::measure(arguments[1], arguments[2], count > 3 ? std::stoi(arguments[3]) : 1,
                                 count > 4 ? arguments[4] : "");
    } catch (const std::exception& error) {
        std::fprintf(stderr, "endurance: %s\n", error.what());
        return 1;
    }
}
