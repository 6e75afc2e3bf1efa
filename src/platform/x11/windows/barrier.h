// SPDX-License-Identifier: MIT

#pragma once

#include "model/subscription.h"
#include "platform/x11/server/connection.h"

#include <cstdint>

namespace tessarel::x11 {

/// Waits until the window manager has processed all requests that were sent before on this connection.
///
/// It configures a window of its own that is never mapped. The server redirects that request to the window
/// manager, behind all earlier ones; the window manager has to pass it on (ICCCM 4.1.5), and the server then
/// reports the move. Without a window manager the server reports it at once.
///
/// Waiting for the target's own ConfigureNotify would be simpler, but several window managers send none for a
/// request that changes nothing, and every such wait would run into the time limit.
class Barrier {
public:
    /// `connection` must outlive the barrier. The window is created by the first wait.
    explicit Barrier(Connection& connection);
    Barrier(const Barrier&) = delete;
    Barrier& operator=(const Barrier&) = delete;
    ~Barrier();

    /// Sends all requests and waits. Returns false when the window manager has not processed them within a
    /// second.
    ///
    /// A hung window manager delays a turn only once: after a timeout, further calls in the same turn return
    /// false at once. Calls in later turns wait only a tenth of a second until the window manager processes a
    /// request again, be it one of an earlier wait.
    bool wait();
    /// Returns whether `event` shows that the window manager has processed all requests that were sent before
    /// the last wait, even if that has timed out.
    [[nodiscard]] bool isAnswer(const Connection::Event& event) const;

private:
    void create();
    /// Moves the window to the next position.
    void request();
    /// Takes `event` for a sign of life if the window manager has passed on a request of any wait.
    void note(const Connection::Event& event);
    [[nodiscard]] bool isMove(const Connection::Event& event) const;

    Connection& m_connection;
    xcb_window_t m_window = XCB_WINDOW_NONE;
    std::int32_t m_x = 0;
    std::int32_t m_first = 0;       // the first position of the current wait
    std::uint64_t m_silentTurn = 0; // the last turn in which a wait timed out
    bool m_isSilent = false;        // no request has been processed since a wait timed out
    SubscriptionPtr m_observer;
};

} // namespace tessarel::x11
