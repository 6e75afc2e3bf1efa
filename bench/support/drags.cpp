// SPDX-License-Identifier: MIT

#include "support/drags.h"

#include "support/await.h"

#include <xcb/shape.h>
#include <xcb/xtest.h>

#include <stdexcept>
#include <thread>

namespace tessarel::bench {

namespace {

using namespace std::chrono_literals;

constexpr auto kTimeToNotice = 50ms; ///< for the program to notice a press, even right after a placement
constexpr auto kPatienceWithPress = 2s;
constexpr int kTries = 5;
constexpr auto kBetweenTries = 500ms;

// Points in two zones of bench/config that do not touch.
constexpr Place kLeft{100, 700};
constexpr Place kRight{1500, 200};

} // namespace

void Hand::moveTo(const Place& place) {
    fake(XCB_MOTION_NOTIFY, 0, place);
    m_place = place;
}

void Hand::fake(std::uint8_t type, std::uint8_t detail, const Place& place) {
    xcb_test_fake_input(m_connection.get(), type, detail, XCB_CURRENT_TIME, m_connection.root(),
                        static_cast<std::int16_t>(place.x), static_cast<std::int16_t>(place.y), 0);
    m_connection.flush();
}

xcb_window_t OverlayWatch::find() const {
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

void OverlayWatch::watch(xcb_window_t overlay) const {
    xcb_shape_select_input(m_connection.get(), overlay, 1);
    m_connection.roundTrip();
    discard();
}

void OverlayWatch::discard() const {
    while (const Received<xcb_generic_event_t> event{xcb_poll_for_event(m_connection.get())}) {
    }
}

Clock::time_point OverlayWatch::nextChange() const {
    const Received<xcb_generic_event_t> event(xcb_wait_for_event(m_connection.get()));
    return Clock::now();
}

bool OverlayWatch::isOverlay(xcb_window_t window) const {
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

void Drags::begin() {
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
        std::this_thread::sleep_for(kBetweenTries);
    }
    throw std::runtime_error("in vain: the overlay");
}

void Drags::end() {
    m_hand.release();
    await("the end of the overlay", [&] { return m_overlay.find() == XCB_NONE; });
    m_hand.releaseShift();
    await("the window in its zone", [&] { return m_target.frame().x == 0; });
}

std::vector<double> Drags::highlights(int count) {
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

int Drags::moveFast(Clock::duration length) {
    int count = 0;
    const auto start = Clock::now();
    for (auto next = start; next < start + length; next += 1ms) {
        std::this_thread::sleep_until(next);
        m_hand.moveTo({kLeft.x + count++ % 200, kLeft.y});
    }
    return count;
}

void Drags::take() {
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

} // namespace tessarel::bench
