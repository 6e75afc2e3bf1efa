// SPDX-License-Identifier: MIT

#include "platform/x11/x11_fixture.h"

#include <stdexcept>
#include <string>

namespace tessarel::x11 {

namespace {

/// Returns `desktop`, and starts a window manager if the previous test has ended it.
SharedDesktop& managed(SharedDesktop& desktop) {
    if (!desktop.manager)
        desktop.manager =
            std::make_unique<x11test::WindowManager>(desktop.server, x11test::chosenWindowManager());
    return desktop;
}

} // namespace

SharedDesktop& SharedDesktop::withManager() {
    static SharedDesktop desktop;
    return managed(desktop);
}

SharedDesktop& SharedDesktop::withoutManager() {
    static SharedDesktop desktop;
    return desktop;
}

SharedDesktop& SharedDesktop::withoutProcesses() {
    static SharedDesktop desktop{.server = x11test::XServer{x11test::serverFor(x11test::chosenWindowManager(),
                                                                               {.tellsProcesses = false})},
                                 .manager = nullptr};
    return managed(desktop);
}

ConnectionDriver::ConnectionDriver(const std::string& display)
    : m_connection(Connection::open(display.c_str(), m_queue).connection) {
    if (!m_connection)
        throw std::runtime_error("no connection to " + display);
}

void ConnectionDriver::hear() {
    (void)m_connection->internAtom("PRIMARY"); // the reply comes after all earlier events
    m_connection->dispatch();
    for (int turn = 0; m_queue.waiting() > 0; ++turn) {
        ASSERT_LT(turn, 100) << "the queue never empties";
        m_queue.runTurn();
    }
}

X11Test::X11Test(SharedDesktop& shared) : desktop(shared) {}

X11Test::~X11Test() {
    client.resume();
    client.process().kill();
    EXPECT_TRUE(observer.waitUntil([&] { return observer.clients().empty(); }));
}

xcb_window_t X11Test::open(const x11test::WindowOptions& options) {
    const xcb_window_t window = client.open(options);
    observer.watch(window);
    EXPECT_TRUE(observer.waitUntil([&] { return observer.managed(window); }));
    observer.activate(window);
    EXPECT_TRUE(observer.waitUntil([&] { return observer.activeWindow() == window; }));
    settle();
    return window;
}

void X11Test::settle() {
    EXPECT_TRUE(observer.settle());
    driver.hear();
}

Element X11Test::elementOf(xcb_window_t window) {
    const auto elements =
        read<std::vector<Element>>(accessibility.application(client.pid()), attribute::kWindows);
    for (const Element& element : elements.value_or(std::vector<Element>{})) {
        if (static_cast<xcb_window_t>(accessibility.key(element)) == window)
            return element;
    }
    ADD_FAILURE() << "no element for the window";
    return {};
}

Rect X11Test::readFrame(const Element& window) {
    const auto position = read<Point>(window, attribute::kPosition);
    const auto size = read<Size>(window, attribute::kSize);
    return position && size ? Rect{position->x, position->y, size->width, size->height} : Rect::null();
}

void X11Test::writeFrame(const Element& window, const Rect& axFrame) {
    accessibility.setAttribute(window, attribute::kSize, axFrame.size());
    accessibility.setAttribute(window, attribute::kPosition, axFrame.origin());
    accessibility.setAttribute(window, attribute::kSize, axFrame.size());
}

Rect X11Test::actualFrame(xcb_window_t window) {
    const auto frame = observer.outerFrame(window);
    return frame ? Rect{static_cast<double>(frame->x), static_cast<double>(frame->y),
                        static_cast<double>(frame->width), static_cast<double>(frame->height)}
                 : Rect::null();
}

} // namespace tessarel::x11
