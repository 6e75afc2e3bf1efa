#include "desktop/window_drag.h"

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
    const long before = wakeUps();
    m_mouse.press();
    // A place that has been left before the program looks is not where it sees the press.
    static_cast<void>(settle(before));
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

/// It has woken up since, and then slept for as long as the window manager takes for a few answers.
bool WindowDrag::settle(long wakeUpsBefore) {
    long last = wakeUpsBefore;
    return m_observer.waitUntil([&] {
        const long before = std::exchange(last, wakeUps());
        return m_observer.settle() && m_observer.settle() && m_observer.settle() && before == last &&
               last > wakeUpsBefore && wakeUps() == last;
    });
}

long WindowDrag::wakeUps() {
    std::ifstream status("/proc/" + std::to_string(m_desktop.program().process().pid()) + "/status");
    for (std::string word; status >> word;)
        if (long count = 0; word == "voluntary_ctxt_switches:" && status >> count)
            return count;
    return 0;
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
    int side = 1;
    return m_observer.waitUntil([&] {
        // The program looks at a window that may move at most every 30 ms, when the mouse moves.
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
