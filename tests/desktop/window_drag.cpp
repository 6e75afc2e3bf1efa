#include "desktop/window_drag.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <string>
#include <utility>

namespace tessarel::x11test {

WindowDrag::~WindowDrag() {
    m_mouse.hold(0);
    m_mouse.release();
}

bool WindowDrag::begin(xcb_window_t window) {
    const Frame before = m_desktop.frame(window);
    const Extents borders = m_observer.extents(window, "_NET_FRAME_EXTENTS").value_or(Extents{});
    press(before.x + before.width / 2, before.y + borders.top / 2);
    moveTo(m_x + 40, m_y + 30);
    const auto follows = [&] {
        const Frame now = m_desktop.frame(window);
        return std::abs(now.x - before.x) > 3 && now.width == before.width;
    };
    return m_observer.waitUntil(follows);
}

void WindowDrag::press(int x, int y) {
    step(x, y);
    EXPECT_TRUE(waitUntilAsleep(0));
    const long before = wakeUpsOfSleeper().value_or(0);
    m_mouse.press();
    // A place that has been left before the program looks is not where it sees the press.
    EXPECT_TRUE(waitUntilAsleep(before));
}

void WindowDrag::moveTo(int x, int y) {
    constexpr int kSteps = 8;
    const int fromX = m_x;
    const int fromY = m_y;
    for (int i = 1; i <= kSteps; ++i) {
        step(fromX + (x - fromX) * i / kSteps, fromY + (y - fromY) * i / kSteps);
        static_cast<void>(m_observer.settle());
    }
}

void WindowDrag::hold(std::uint16_t modifiers) {
    m_mouse.hold(modifiers);
    step(m_x + 1, m_y);
}

void WindowDrag::release() {
    m_mouse.release();
    static_cast<void>(m_observer.settle());
}

void WindowDrag::step(int x, int y) {
    m_x = x;
    m_y = y;
    m_mouse.moveTo(x, y);
}

/// It is asleep when it has nothing to read, and it may want to look again in a moment.
bool WindowDrag::waitUntilAsleep(long wakeUps) {
    constexpr int kLooks = 5;
    int looks = 0;
    long last = wakeUps;
    return m_observer.waitUntil([&] {
        const bool isSettled = m_observer.settle();
        const auto now = wakeUpsOfSleeper();
        looks = isSettled && now > wakeUps && now == last ? looks + 1 : 0;
        last = now.value_or(last);
        return looks >= kLooks;
    });
}

std::optional<long> WindowDrag::wakeUpsOfSleeper() {
    std::ifstream status("/proc/" + std::to_string(m_desktop.program().process().pid()) + "/status");
    bool isAsleep = false;
    for (std::string word; status >> word;) {
        if (std::string state; word == "State:" && status >> state)
            isAsleep = state == "S";
        if (long count = 0; word == "voluntary_ctxt_switches:" && status >> count)
            return isAsleep ? std::optional(count) : std::nullopt;
    }
    return std::nullopt;
}

std::optional<Frame> WindowDrag::overlay() {
    xcb_connection_t* x = m_observer.x().get();
    const auto tree = own(xcb_query_tree_reply(x, xcb_query_tree(x, m_observer.root()), nullptr));
    if (!tree)
        return std::nullopt;
    const xcb_window_t* const windows = xcb_query_tree_children(tree.get());
    for (int i = 0; i < xcb_query_tree_children_length(tree.get()); ++i)
        if (const auto frame = overlayFrame(windows[i]))
            return frame;
    return std::nullopt;
}

/// The overlay is the only window of the program that no manager decorates.
std::optional<Frame> WindowDrag::overlayFrame(xcb_window_t window) {
    xcb_connection_t* x = m_observer.x().get();
    const auto attributes =
        own(xcb_get_window_attributes_reply(x, xcb_get_window_attributes(x, window), nullptr));
    if (!attributes || attributes->override_redirect == 0 || attributes->map_state != XCB_MAP_STATE_VIEWABLE)
        return std::nullopt;
    const auto owner = m_observer.values(window, "_NET_WM_PID");
    if (owner.empty() || static_cast<pid_t>(owner.front()) != m_desktop.program().process().pid())
        return std::nullopt;
    return m_observer.clientFrame(window);
}

bool WindowDrag::waitForOverlay(const Frame& area) {
    int side = 4;
    return m_observer.waitUntil([&] {
        // The program looks at a window that may move at most every 30 ms, when the mouse moves, and lets it
        // move a little.
        step(m_x + std::exchange(side, -side), m_y);
        const auto frame = overlay();
        return frame && frame->x <= area.x && frame->y <= area.y && frame->right() >= area.right() &&
               frame->bottom() >= area.bottom();
    });
}

bool WindowDrag::waitUntilNoOverlay() {
    return m_observer.waitUntil([this] { return !overlay(); });
}

} // namespace tessarel::x11test
