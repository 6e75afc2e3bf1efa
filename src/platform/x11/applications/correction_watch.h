// SPDX-License-Identifier: MIT

#pragma once

#include "model/signal.h"
#include "model/subscription.h"
#include "platform/x11/server/connection.h"
#include "platform/x11/windows/client_windows.h"
#include "ports/desktop/rect.h"
#include "ports/main_queue_port.h"

#include <chrono>
#include <functional>
#include <unordered_map>

namespace tessarel::x11 {

/// Notices when a program changes the frame of its window shortly after the window has been placed: some
/// programs correct their size once they have seen the new one.
///
/// Each window is watched for `kDuration` from its last placement. A change while a mouse button is down is
/// the user's and ends the watch. Changes that leave the window in a state such as maximised do not count. A
/// watched window costs at most one round trip for each of its changes.
class CorrectionWatch {
public:
    static constexpr std::chrono::milliseconds kDuration{500};

    /// All arguments must outlive this object.
    CorrectionWatch(Connection& connection, ClientWindows& windows, MainQueuePort& queue);
    CorrectionWatch(const CorrectionWatch&) = delete;
    CorrectionWatch& operator=(const CorrectionWatch&) = delete;
    ~CorrectionWatch() = default;

    /// Watches `window` from now on, or watches it longer. Call it just before the frame is read back after a
    /// placement: every change that this read misses is then noticed. Waits for nothing.
    void start(xcb_window_t window);

    /// Watches `window` from now on, and reports its frame. Call it when a placement has ended that the
    /// window manager had not processed in time. While a mouse button is down, which may be for another
    /// window, the report waits for the release; a change until then ends the watch.
    void report(xcb_window_t window);

    /// Reports the frame of `window` that has just been read if the server has announced a change of it that
    /// is not delivered yet. Takes a round trip then, and none otherwise.
    void catchUp(xcb_window_t window);

    /// Calls `corrected` with a watched window and its new outer frame, in pixels of the root window, until
    /// the returned subscription is destroyed. The frame may be the one of the placement.
    [[nodiscard]] SubscriptionPtr
    onCorrection(std::function<void(xcb_window_t window, const Rect& outer)> corrected);

private:
    /// A watched window.
    struct Watched {
        SubscriptionPtr end;         ///< the scheduled end of the watch
        SubscriptionPtr report = {}; ///< the scheduled `report`, if a mouse button was down
        bool hasChanged = false;     ///< since the frame was read
    };

    void note(const Connection::Event& event);
    void hear(const Connection::Event& event);
    /// Reports the frame, or returns false if a mouse button is down.
    bool examine(xcb_window_t window);
    void examineChange(xcb_window_t window);
    void stop(xcb_window_t window);

    Connection& m_connection;
    ClientWindows& m_windows;
    MainQueuePort& m_queue;
    std::unordered_map<xcb_window_t, Watched> m_watched;
    Signal<xcb_window_t, const Rect&> m_corrections;
    SubscriptionPtr m_observer;
    SubscriptionPtr m_handler;
};

} // namespace tessarel::x11
