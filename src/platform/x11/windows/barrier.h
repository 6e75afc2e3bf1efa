#pragma once

#include "platform/x11/server/connection.h"

#include <cstdint>

namespace tessarel::x11 {

/// Tells when the window manager has dealt with everything we have asked of it.
///
/// It moves a window of its own that is never shown: the manager has to pass that on, after all that was
/// requested before on the same connection, and the server then reports the move. Without a manager the
/// server reports it at once.
class Barrier {
public:
    explicit Barrier(Connection& connection);
    Barrier(const Barrier&) = delete;
    Barrier& operator=(const Barrier&) = delete;
    ~Barrier();

    /// Sends what has been requested and waits. False when the manager has not answered in time; it is not
    /// waited for again in the same turn.
    bool wait();

private:
    void create();
    [[nodiscard]] bool isAnswer(const Connection::Event& event) const;

    Connection& m_connection;
    xcb_window_t m_window = XCB_WINDOW_NONE;
    std::int32_t m_x = 0;
    std::uint64_t m_silentTurn = 0; // the last one in which there was no answer
};

} // namespace tessarel::x11
