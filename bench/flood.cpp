// SPDX-License-Identifier: MIT

// Measures hot keys while another client floods the display with events: how long a press takes, whether one
// is lost, how soon the program is back to normal, whether SIGTERM still ends it, and how much memory the
// flood leaves behind.
//
//   flood DIRECTORY [PRESSES] [EVENTS_PER_SECOND]

#include "support/flooded_desktop.h"
#include "support/x11/event_flood.h"

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace tessarel::bench {

namespace {

using x11test::EventFlood;
using x11test::FloodKind;

// More than openbox itself can handle would only measure its own queue.
constexpr int kChangesOfWindowsPerSecond = 2'000;
constexpr int kWindowsPerSecond = 200;

struct Row {
    std::string name;
    FloodKind kind;
    int perSecond;
};

std::vector<Row> rows(int perSecond) {
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

void measure(const std::string& directory, const Row& row, int count, Table& table) {
    const Panel panel;
    FloodedDesktop desktop(directory);
    const xcb_window_t window = row.kind == FloodKind::WindowStrut ? panel.window() : desktop.window();
    const auto start = [&] { return std::make_unique<EventFlood>("", row.kind, row.perSecond, window); };
    desktop.measure(row.name, count, start, table);
}

void measureAll(const std::string& directory, int count, int perSecond) {
    Table table = floodTable();
    for (const Row& row : rows(perSecond))
        measure(directory, row, count, table);
    table.print("Key press to placed window during a flood of events, " + std::to_string(count) +
                " presses each");
}

} // namespace

} // namespace tessarel::bench

int main(int count, char** arguments) {
    return tessarel::bench::runFloodProgram(count, arguments, tessarel::bench::measureAll);
}
