// SPDX-License-Identifier: MIT

#pragma once

#include "platform/sim/time/sim_clock.h"
#include "platform/sim/time/sim_main_queue.h"
#include "platform/x11/server/connection.h"

#include <xcb/xcb.h>

#include <chrono>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

namespace tessarel::x11 {

/// A connection and its main queue, both run by the test.
class EventLoop {
public:
    /// Throws std::runtime_error if the display cannot be opened.
    explicit EventLoop(const std::string& display) {
        auto opened = Connection::open(display.c_str(), m_queue);
        if (!opened.connection)
            throw std::runtime_error(opened.failure);
        m_connection = std::move(opened.connection);
    }

    [[nodiscard]] Connection& connection() { return *m_connection; }
    [[nodiscard]] MainQueuePort& queue() { return m_queue; }

    /// Waits until the server has processed all our requests, and handles all events that it sent before
    /// that.
    void settle() {
        xcb_connection_t* const xcb = m_connection->xcb();
        static_cast<void>(m_connection->reply<xcb_get_input_focus_reply>(xcb_get_input_focus(xcb)));
        m_connection->dispatch();
        turn();
    }

    /// Lets `duration` pass and runs the work of the main queue that is due by then.
    void turn(sim::SimClock::Duration duration = {}) { m_clock.advance(duration); }

private:
    sim::SimClock m_clock;
    sim::SimMainQueue m_queue{m_clock};
    std::unique_ptr<Connection> m_connection;
};

} // namespace tessarel::x11
