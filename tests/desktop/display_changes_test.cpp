// SPDX-License-Identifier: MIT

#include "desktop/desktop.h"
#include "desktop/expected.h"
#include "support/long_run.h"

#include <gtest/gtest.h>
#include <xcb/randr.h>
#include <xcb/xcbext.h>

#include <algorithm>
#include <array>
#include <random>
#include <string>
#include <sys/uio.h>
#include <vector>

namespace tessarel::x11test {
namespace {

constexpr int kRootWidth = 2560;
constexpr int kRootHeight = 1024;

/// Adds, removes and changes monitors while the program runs, from the test's own process.
class Monitors {
public:
    explicit Monitors(const XServer& server) : m_x(server.display()) {}

    void change() {
        const std::string& name = kNames.at(upTo(kNames.size()));
        if (upTo(3) == 0)
            remove(name);
        else
            set(name, upTo(2) == 0, randomFrame());
        m_x.roundTrip();
    }

    /// Removes all added monitors, so that only the server's own monitor is left.
    void removeAll() {
        for (const std::string& name : kNames)
            remove(name);
        m_x.roundTrip();
    }

    [[nodiscard]] int count() {
        const auto cookie = xcb_randr_get_monitors(m_x.get(), m_x.root(), 1);
        const auto reply = own(xcb_randr_get_monitors_reply(m_x.get(), cookie, nullptr));
        return reply ? static_cast<int>(reply->nMonitors) : 0;
    }

    /// Returns a random number below `end`.
    std::size_t upTo(std::size_t end) { return m_random() % end; }

private:
    inline static const std::array<std::string, 4> kNames = {"A", "B", "C", "D"};

    Frame randomFrame() {
        const int width = 100 + static_cast<int>(upTo(1500));
        const int height = 100 + static_cast<int>(upTo(900));
        return {static_cast<int>(upTo(kRootWidth)) - 200, static_cast<int>(upTo(kRootHeight)) - 200, width,
                height};
    }

    /// The request as sent: the length that xcb computes for RRSetMonitor is not a multiple of four bytes.
    struct SetMonitor {
        xcb_randr_set_monitor_request_t request{};
        xcb_randr_monitor_info_t info{};
        xcb_randr_output_t output = XCB_NONE;
    };

    void set(const std::string& name, bool primary, const Frame& frame) {
        SetMonitor monitor;
        monitor.request.window = m_x.root();
        monitor.info.name = m_x.atom(name);
        monitor.info.primary = primary ? 1 : 0;
        monitor.info.nOutput = upTo(2) == 0 ? 1 : 0;
        monitor.info.x = static_cast<std::int16_t>(frame.x);
        monitor.info.y = static_cast<std::int16_t>(frame.y);
        monitor.info.width = static_cast<std::uint16_t>(frame.width);
        monitor.info.height = static_cast<std::uint16_t>(frame.height);
        monitor.info.width_in_millimeters = monitor.info.width / 4U;
        monitor.info.height_in_millimeters = monitor.info.height / 4U;
        monitor.output = output();
        send(monitor);
    }

    void send(SetMonitor& monitor) {
        constexpr std::size_t kKeptForTheLibrary = 2;
        const std::size_t length = sizeof monitor - (monitor.info.nOutput == 0 ? sizeof monitor.output : 0);
        const xcb_protocol_request_t kind{
            .count = 1, .ext = &xcb_randr_id, .opcode = XCB_RANDR_SET_MONITOR, .isvoid = 1};
        std::array<iovec, kKeptForTheLibrary + 1> parts{};
        parts[kKeptForTheLibrary] = {.iov_base = &monitor, .iov_len = length};
        xcb_send_request(m_x.get(), 0, parts.data() + kKeptForTheLibrary, &kind);
    }

    void remove(const std::string& name) { xcb_randr_delete_monitor(m_x.get(), m_x.root(), m_x.atom(name)); }

    xcb_randr_output_t output() {
        const auto cookie = xcb_randr_get_screen_resources_current(m_x.get(), m_x.root());
        const auto reply = own(xcb_randr_get_screen_resources_current_reply(m_x.get(), cookie, nullptr));
        return reply && reply->num_outputs > 0 ? *xcb_randr_get_screen_resources_current_outputs(reply.get())
                                               : XCB_NONE;
    }

    XConnection m_x;
    std::mt19937 m_random{20260101};
};

class DisplayChangesTest : public testing::Test {
protected:
    [[nodiscard]] std::string settings() { return storedSettings(desktop.server()); }

    void expectAfter(const Combination& combination, const Frame& wanted) {
        desktop.press(combination);
        EXPECT_EQ(desktop.settledFrame(window, wanted), wanted);
    }

    Desktop desktop{{.server = {.width = kRootWidth, .height = kRootHeight}}};
    TestClient client{desktop.server()};
    xcb_window_t window = desktop.open(client);
    Monitors monitors{desktop.server()};
};

TEST_F(DisplayChangesTest, RandomMonitorChangesBetweenPressesDoNoHarm) {
    // None of these remembers a zone for an application, so the settings must not change.
    constexpr std::array kPressed = {
        hotkey::kLeftHalf,    hotkey::kBottomHalf,      hotkey::kMaximize,
        hotkey::kCenter,      hotkey::kRestore,         hotkey::kNextDisplay,
        hotkey::kNextDisplay, hotkey::kPreviousDisplay, Combination{key::kA, kControlAlt}};
    const Frame area = desktop.usableArea();
    ASSERT_TRUE(desktop.start());
    const std::string before = settings();

    int most = 0;
    for (int i = rounds(200, 1000); i > 0; --i) {
        monitors.change();
        most = std::max(most, monitors.count());
        if (i % 4 == 0)
            desktop.press(kPressed.at(monitors.upTo(kPressed.size())));
        ASSERT_TRUE(desktop.program().running()) << i << "\n" << desktop.program().errors();
    }

    EXPECT_GE(most, 4) << "the monitors do not change";
    monitors.removeAll();
    ASSERT_TRUE(desktop.observer().waitUntil([&] { return desktop.usableArea() == area; }));
    ASSERT_TRUE(desktop.waitUntilProgramRests()) << "it is still busy with the changes";
    expectAfter(hotkey::kLeftHalf, frameIn(area, kLeftHalf));
    expectAfter(hotkey::kBottomHalf, frameIn(area, kBottomHalf));
    EXPECT_EQ(settings(), before);
    EXPECT_TRUE(desktop.stop());
    EXPECT_EQ(desktop.program().errors(), "");
}

TEST_F(DisplayChangesTest, ReorderedMonitorsTakeEffectAtTheNextPress) {
    const Monitor left{.name = "L", .x = 0, .y = 0, .width = 1280, .height = 1024};
    const Monitor right{.name = "R", .x = 1280, .y = 0, .width = 1280, .height = 900};
    ASSERT_TRUE(desktop.start());

    for (const auto& order : {std::vector{left, right}, std::vector{right, left}}) {
        desktop.server().setMonitors(order);
        desktop.observer().moveOuterFrame(window, {1500, 100, 500, 400});
        ASSERT_EQ(desktop.settledFrame(window, {1500, 100, 500, 400}), (Frame{1500, 100, 500, 400}));
        expectAfter(hotkey::kLeftHalf, {1280, 0, 640, 900});
    }
    EXPECT_TRUE(desktop.stop());
}

TEST_F(DisplayChangesTest, AMonitorAboveAndLeftOfThePrimaryOneTakesWindows) {
    desktop.server().setMonitors(
        {{.name = "P", .x = 1280, .y = 512, .width = 1280, .height = 512, .primary = true},
         {.name = "S", .x = 0, .y = 0, .width = 1280, .height = 512}});
    ASSERT_TRUE(desktop.start());
    desktop.observer().moveOuterFrame(window, {1400, 520, 500, 300});
    ASSERT_EQ(desktop.settledFrame(window, {1400, 520, 500, 300}), (Frame{1400, 520, 500, 300}));

    desktop.press(hotkey::kNextDisplay);
    ASSERT_TRUE(desktop.observer().waitUntil([&] { return desktop.frame(window).right() <= 1280; }));

    expectAfter(hotkey::kTopHalf, {0, 0, 1280, 256});
    EXPECT_TRUE(desktop.stop());
}

} // namespace
} // namespace tessarel::x11test
