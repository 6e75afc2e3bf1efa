#pragma once

#include "platform/sim/sim_clock.h"
#include "platform/sim/sim_main_queue.h"
#include "platform/x11/server/connection.h"

#include <xcb/xcb.h>

#include <chrono>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

namespace tessarel::x11 {

/// The program's side of a desktop: a connection and the main queue that it lives on, both turned by the
/// test.
class EventLoop {
public:
    /// Throws std::runtime_error when the display cannot be opened.
    explicit EventLoop(const std::string& display) {
        auto opened = Connection::open(display.c_str(), m_queue);
        if (!opened.connection)
            throw std::runtime_error(opened.failure);
        m_connection = std::move(opened.connection);
    }

    [[nodiscard]] Connection& connection() { return *m_connection; }
    [[nodiscard]] MainQueuePort& queue() { return m_queue; }

    /// Has every request of ours carried out, and handles every event that the server has sent before.
    void settle() {
        xcb_connection_t* const xcb = m_connection->xcb();
        static_cast<void>(m_connection->reply<xcb_get_input_focus_reply>(xcb_get_input_focus(xcb)));
        m_connection->dispatch();
        turn();
    }

    /// Runs what waits on the main queue.
    void turn() { m_clock.advance(std::chrono::nanoseconds::zero()); }

private:
    sim::SimClock m_clock;
    sim::SimMainQueue m_queue{m_clock};
    std::unique_ptr<Connection> m_connection;
};

} // namespace tessarel::x11
