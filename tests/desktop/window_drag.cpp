// SPDX-License-Identifier: MIT

#include "desktop/window_drag.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <string>
#include <utility>

namespace tessarel::x11test {

WindowDrag::~WindowDrag() {
    m_mouse.hold(0);
    m_mouse.release();
}

/// Returns a point in the middle of the title bar, a different one each time: two presses at the same point
/// would be a double click.
WindowDrag::Place WindowDrag::gripOf(xcb_window_t window) {
    const Frame frame = m_desktop.frame(window);
    const Extents borders = m_observer.decoration(window);
    static int aside = 0;
    aside = (aside + 20) % 100;
    return {frame.x + frame.width / 2 + aside, frame.y + borders.top / 2};
}

bool WindowDrag::begin(xcb_window_t window) {
    // Some window managers decorate a new window a second time, and an interactive move ends when the size
    // changes.
    Frame last;
    EXPECT_TRUE(m_observer.waitUntil([&] {
        const Frame before = std::exchange(last, m_desktop.frame(window));
        return before == last && m_desktop.waitUntilProgramRests() && m_desktop.frame(window) == last;
    }));
    // mutter ignores some presses, mainly on windows that have just opened, so press again.
    const bool isMutter = m_desktop.manager() == WindowManagerKind::Mutter;
    for (int triesLeft = isMutter ? 8 : 1; triesLeft > 0; --triesLeft) {
        const Place grip = gripOf(window);
        step(grip.x, grip.y);
        // A compositor that is starting covers the screen briefly before it lets pointer events through.
        EXPECT_TRUE(m_observer.waitUntil([&] { return m_observer.isUnderPointer(window); }));
        press(grip.x, grip.y);
        if (pull(window, isMutter ? Deadline(std::chrono::seconds(1)) : Deadline()))
            return true;
        release();
    }
    return false;
}

bool WindowDrag::beginUnseen(xcb_window_t window) {
    const Place grip = gripOf(window);
    step(grip.x, grip.y);
    m_mouse.press();
    return pull(window);
}

void WindowDrag::grip(xcb_window_t window) {
    const Place grip = gripOf(window);
    step(grip.x, grip.y);
    EXPECT_TRUE(m_observer.waitUntil([&] { return m_observer.isUnderPointer(window); }));
    press(grip.x, grip.y);
}

bool WindowDrag::pull(xcb_window_t window, const Deadline& deadline) {
    const Frame before = m_desktop.frame(window);
    moveTo(m_x + 40, m_y + 30);
    int side = 3;
    const auto follows = [&] {
        if (isWithheld()) // it reads no movement that the server reported before its grab
            step(m_x + std::exchange(side, -side), m_y);
        const Frame now = m_desktop.frame(window);
        return std::abs(now.x - before.x) > 3 && now.width == before.width;
    };
    return m_observer.waitUntil(follows, deadline);
}

void WindowDrag::press(int x, int y) {
    step(x, y);
    EXPECT_TRUE(m_desktop.waitUntilProgramRests());
    const long before = m_desktop.program().timesAsleep().value_or(0);
    m_mouse.press();
    // The program queries the pointer after the press, so the pointer must not move before that.
    EXPECT_TRUE(isWithheld() || m_desktop.waitUntilProgramRests(before));
}

/// Returns whether the window manager withholds a press from all others until the pointer moves.
bool WindowDrag::isWithheld() const {
    using enum WindowManagerKind;
    return m_desktop.manager() == Fvwm3 || m_desktop.manager() == WindowMaker;
}

void WindowDrag::moveTo(int x, int y) {
    constexpr int kSteps = 8;
    const int fromX = m_x;
    const int fromY = m_y;
    for (int i = 1; i <= kSteps; ++i) {
        step(fromX + (x - fromX) * i / kSteps, fromY + (y - fromY) * i / kSteps);
        settle();
    }
}

/// Waits until the window manager has processed the last step, unless it processes nothing but the pointer
/// during a move.
void WindowDrag::settle() {
    using enum WindowManagerKind;
    const WindowManagerKind manager = m_desktop.manager();
    if (manager != Fvwm3 && manager != WindowMaker && manager != Pekwm)
        static_cast<void>(m_observer.settle());
}

void WindowDrag::hold(std::uint16_t modifiers) {
    m_mouse.hold(modifiers);
    step(m_x + 1, m_y);
}

void WindowDrag::release() {
    m_mouse.release();
    static_cast<void>(m_observer.settle());
}

void WindowDrag::click() {
    m_mouse.press();
    m_mouse.release();
}

void WindowDrag::step(int x, int y) {
    m_x = x;
    m_y = y;
    m_mouse.moveTo(x, y);
}

std::optional<Frame> WindowDrag::overlay() {
    const auto found = find();
    return found ? std::optional(found->frame) : std::nullopt;
}

bool WindowDrag::isOverlayTranslucent() {
    constexpr int kDepthWithAlpha = 32;
    const auto found = find();
    return found && found->depth == kDepthWithAlpha;
}

std::optional<WindowDrag::Overlay> WindowDrag::find() {
    xcb_connection_t* x = m_observer.x().get();
    const auto tree = own(xcb_query_tree_reply(x, xcb_query_tree(x, m_observer.root()), nullptr));
    if (!tree)
        return std::nullopt;
    const xcb_window_t* const windows = xcb_query_tree_children(tree.get());
    for (int i = 0; i < xcb_query_tree_children_length(tree.get()); ++i)
        if (const auto found = asOverlay(windows[i]))
            return found;
    return std::nullopt;
}

/// The overlay is the only override-redirect window of the program.
std::optional<WindowDrag::Overlay> WindowDrag::asOverlay(xcb_window_t window) {
    xcb_connection_t* x = m_observer.x().get();
    const auto attributes =
        own(xcb_get_window_attributes_reply(x, xcb_get_window_attributes(x, window), nullptr));
    if (!attributes || attributes->override_redirect == 0 || attributes->map_state != XCB_MAP_STATE_VIEWABLE)
        return std::nullopt;
    const auto owner = m_observer.values(window, "_NET_WM_PID");
    if (owner.empty() || static_cast<pid_t>(owner.front()) != m_desktop.program().process().pid())
        return std::nullopt;
    const auto geometry = own(xcb_get_geometry_reply(x, xcb_get_geometry(x, window), nullptr));
    if (!geometry)
        return std::nullopt;
    return Overlay{{geometry->x, geometry->y, geometry->width, geometry->height}, geometry->depth};
}

bool WindowDrag::waitForOverlay(const Frame& area) {
    int side = m_x < 5 ? 5 : -5; // at an edge of the screen the pointer would not move
    return m_observer.waitUntil([&] {
        // While a drag may begin, the program checks the window at most every 30 ms, and only when the mouse
        // moves.
        step(m_x + std::exchange(side, -side), m_y);
        const auto frame = overlay();
        return frame && frame->x <= area.x && frame->y <= area.y && frame->right() >= area.right() &&
               frame->bottom() >= area.bottom();
    });
}

bool WindowDrag::waitUntilNoOverlay() {
    return m_observer.waitUntil([this] { return !find(); });
}

bool WindowDrag::staysWithoutOverlay() {
    return m_desktop.waitUntilProgramRests() && !find();
}

bool WindowDrag::waitUntilNothingIsGrabbed() {
    return m_observer.waitUntil([this] { return grabsAndLetsGo(); });
}

bool WindowDrag::grabsAndLetsGo() {
    xcb_connection_t* x = m_observer.x().get();
    const auto mouse = own(
        xcb_grab_pointer_reply(x,
                               xcb_grab_pointer(x, 0, m_observer.root(), 0, XCB_GRAB_MODE_ASYNC,
                                                XCB_GRAB_MODE_ASYNC, XCB_NONE, XCB_NONE, XCB_CURRENT_TIME),
                               nullptr));
    const auto keyboard =
        own(xcb_grab_keyboard_reply(x,
                                    xcb_grab_keyboard(x, 0, m_observer.root(), XCB_CURRENT_TIME,
                                                      XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
                                    nullptr));
    xcb_ungrab_pointer(x, XCB_CURRENT_TIME);
    xcb_ungrab_keyboard(x, XCB_CURRENT_TIME);
    m_observer.x().roundTrip();
    return mouse && mouse->status == XCB_GRAB_STATUS_SUCCESS && keyboard &&
           keyboard->status == XCB_GRAB_STATUS_SUCCESS;
}

} // namespace tessarel::x11test
