// SPDX-License-Identifier: MIT

// Measures the time from a click on the tray icon until the menu is on the screen. Tessarel rebuilds its menu
// at each click; the baseline is an empty Qt tray program with a menu of one row.
//
//   click DIRECTORY TINT2_CONFIG [CLICKS]

#include "support/clock.h"
#include "support/resident.h"
#include "support/statistics.h"
#include "support/table.h"
#include "support/tray.h"

#include <xcb/xtest.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <exception>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace tessarel::bench {

namespace {

using namespace std::chrono_literals;

constexpr int kDefaultClicks = 30;
constexpr auto kPatience = 5s;
constexpr auto kNotTwice = 600ms; // a second click within this time would be a double click
constexpr std::uint8_t kRightButton = 3;
constexpr std::uint8_t kEscape = 9;
constexpr int kPanelHeight = 30;
constexpr int kIntoMenu = 10;               // right of the pointer and below the panel
constexpr std::uint32_t kBare = 0x00FF00FF; // a colour that no menu has

/// Clicks the tray icon with XTEST and watches for the menu below it.
class Clicker {
public:
    explicit Clicker(const Place& icon);

    /// Opens the menu and closes it again. Returns the time until the menu was painted.
    Milliseconds click();

private:
    void fake(std::uint8_t type, std::uint8_t detail, int x = 0, int y = 0);
    [[nodiscard]] bool isBare() const;
    template <typename Condition>
    void await(Condition holds) const;

    Connection m_connection;
    Place m_inMenu;
};

Clicker::Clicker(const Place& icon) : m_inMenu{icon.x + kIntoMenu, kPanelHeight + kIntoMenu} {
    xcb_change_window_attributes(m_connection.get(), m_connection.root(), XCB_CW_BACK_PIXEL, &kBare);
    xcb_clear_area(m_connection.get(), 0, m_connection.root(), 0, 0, 0, 0);
    fake(XCB_MOTION_NOTIFY, 0, icon.x, icon.y);
}

void Clicker::fake(std::uint8_t type, std::uint8_t detail, int x, int y) {
    xcb_test_fake_input(m_connection.get(), type, detail, XCB_CURRENT_TIME, m_connection.root(),
                        static_cast<std::int16_t>(x), static_cast<std::int16_t>(y), 0);
    m_connection.flush();
}

/// Returns true while the place of the menu still shows the root window's colour.
bool Clicker::isBare() const {
    const Received<xcb_get_image_reply_t> pixel(
        xcb_get_image_reply(m_connection.get(),
                            xcb_get_image(m_connection.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, m_connection.root(),
                                          static_cast<std::int16_t>(m_inMenu.x),
                                          static_cast<std::int16_t>(m_inMenu.y), 1, 1, 0x00FFFFFF),
                            nullptr));
    if (!pixel)
        throw std::runtime_error("the X server has gone");
    std::uint32_t value = 0;
    std::memcpy(&value, xcb_get_image_data(pixel.get()), sizeof value);
    return (value & 0x00FFFFFF) == kBare;
}

template <typename Condition>
void Clicker::await(Condition holds) const {
    const auto end = Clock::now() + kPatience;
    while (!holds()) {
        if (Clock::now() > end)
            throw std::runtime_error("no menu came, or it did not go");
        std::this_thread::sleep_for(200us);
    }
}

Milliseconds Clicker::click() {
    std::this_thread::sleep_for(kNotTwice);
    const auto begin = Clock::now();
    fake(XCB_BUTTON_PRESS, kRightButton);
    fake(XCB_BUTTON_RELEASE, kRightButton);
    await([this] { return !isBare(); });
    const Milliseconds taken = Clock::now() - begin;
    fake(XCB_KEY_PRESS, kEscape);
    fake(XCB_KEY_RELEASE, kEscape);
    await([this] { return isBare(); });
    return taken;
}

struct Times {
    double first = 0; ///< the first click, which creates the menu's window and loads fonts
    std::vector<double> later;
};

Times clicksOn(const Resident& program, const Tray& tray, int clicks) {
    const Connection connection;
    const auto running = startAndAwait(program, connection);
    Clicker clicker(tray.awaitIcon(std::filesystem::path(program.path).filename()));
    Times times;
    times.first = clicker.click().count();
    for (int i = 0; i < clicks; ++i)
        times.later.push_back(clicker.click().count());
    return times;
}

void measure(const std::string& directory, const std::string& panelConfig, int clicks) {
    const Tray tray(panelConfig);
    Table table({"program", "first ms", "p50 ms", "p95 ms", "p50 more than empty"});
    std::optional<double> empty;
    for (const Resident& program : residents(directory)) {
        const Times times = clicksOn(program, tray, clicks);
        const double usual = median(times.later);
        if (!empty)
            empty = usual;
        table.add({program.name, number(times.first, 1), number(usual, 1),
                   number(percentile(times.later, 95), 1), number(usual - *empty, 1)});
    }
    table.print("Click to painted menu, " + std::to_string(clicks) + " clicks each");
}

} // namespace

} // namespace tessarel::bench

int main(int count, char** arguments) {
    if (count < 3) {
        std::fprintf(stderr, "usage: click DIRECTORY TINT2_CONFIG [CLICKS]\n");
        return 2;
    }
    try {
        tessarel::bench::measure(arguments[1], arguments[2],
                                 count > 3 ? std::stoi(arguments[3]) : tessarel::bench::kDefaultClicks);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "click: %s\n", error.what());
        return 1;
    }
}
