// SPDX-License-Identifier: MIT

#pragma once

#include "model/signal.h"
#include "model/subscription.h"
#include "platform/x11/server/atoms.h"
#include "platform/x11/server/display.h"
#include "platform/x11/server/event_queue.h"
#include "platform/x11/server/extensions.h"
#include "platform/x11/server/reply.h"
#include "ports/main_queue_port.h"

#include <xcb/xcb.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_map>

namespace tessarel::x11 {

/// The program's own connection to the X server, separate from Qt's.
///
/// Synchronous waits are safe here because no other thread reads this connection. Qt reads its connection in
/// a second thread, which can take the event that a wait on it expects.
///
/// The owner watches `fileDescriptor()` and calls `dispatch()` whenever it is readable. Events that were read
/// during a wait are dispatched through the main queue. Nothing polls: without events there are no turns.
///
/// Other clients can cause events faster than they can be handled. Therefore events that another client has
/// made up are dropped (`isForged`), equal notices are merged and input comes first (`EventQueue`), and a
/// dispatch ends after a while, so that everything else on the main queue gets its turn.
///
/// A *turn* is one delivered event of the X connection. Replies may be cached, and writes collected, until
/// the turn ends. A turn begins with the first use of `xcb()`. It ends after the event has been delivered or,
/// outside an event, in the next iteration of the main queue.
///
/// Once the connection is lost, every reply is null and every wait returns at once.
class Connection {
public:
    using Event = xcb_generic_event_t;

    /// The result of `open`.
    struct Opened {
        std::unique_ptr<Connection> connection; ///< null on failure
        std::string failure;                    ///< one sentence for the user; empty on success
    };

    /// Connects to `displayName`, or to $DISPLAY when it is null. `queue` must outlive the connection. Fails
    /// when the server refuses the connection or does not have the screen that the name asks for.
    [[nodiscard]] static Opened open(const char* displayName, MainQueuePort& queue);

    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    ~Connection();

    /// Returns the connection for sending requests and opens a turn. Collect replies and errors only through
    /// `reply()` and `succeeds()`: xcb may read events meanwhile, and those must be queued.
    [[nodiscard]] xcb_connection_t* xcb();
    /// Like `xcb()`, but does not open a turn. Use it only for replies that nothing caches; it saves one loop
    /// iteration.
    [[nodiscard]] xcb_connection_t* xcbWithoutTurn() const { return m_xcb.get(); }
    /// Returns the socket, which becomes readable when events or replies arrive.
    [[nodiscard]] int fileDescriptor() const;
    [[nodiscard]] xcb_window_t root() const { return m_screen->root; }
    /// Returns whether the window was created over this connection.
    [[nodiscard]] bool owns(xcb_window_t window) const;
    /// Returns the index of the X screen that the display name asks for, as in `_NET_WM_CM_S<n>`.
    [[nodiscard]] int screenNumber() const { return m_screenNumber; }
    [[nodiscard]] const xcb_screen_t& screen() const { return *m_screen; }
    [[nodiscard]] xcb_atom_t atom(Atom atom) const { return m_atoms[atom]; }
    [[nodiscard]] const Atoms& atoms() const { return m_atoms; }
    [[nodiscard]] const Extensions& extensions() const { return m_extensions; }
    /// Returns whether the connection has failed, for instance because the server has exited.
    [[nodiscard]] bool isLost() const;

    /// Interns an atom by name. Takes a round trip. Returns XCB_ATOM_NONE when the connection is lost.
    [[nodiscard]] xcb_atom_t internAtom(std::string_view name);

    /// Waits for the reply to a request: `reply<xcb_get_geometry_reply>(cookie)`. Returns null when the
    /// request failed; the error itself is dropped.
    template <auto kReplyFunction, class Cookie>
    [[nodiscard]] auto reply(Cookie cookie) {
        beginReply();
        xcb_generic_error_t* error = nullptr;
        auto* const answer = kReplyFunction(m_xcb.get(), cookie, &error);
        const Reply<xcb_generic_error_t> swallowed(error);
        endReply();
        return Reply<std::remove_pointer_t<decltype(answer)>>(answer);
    }

    /// Calls `work` with the connection and returns its result. `work` may wait for replies through functions
    /// of a library.
    template <class Work>
    [[nodiscard]] auto withReplies(Work work) {
        beginReply();
        auto result = work(m_xcb.get());
        endReply();
        return result;
    }

    /// Waits for the outcome of a checked request that has no reply, and returns whether it succeeded. The
    /// outcomes of all requests that were sent before arrive in the same round trip.
    [[nodiscard]] bool succeeds(xcb_void_cookie_t cookie);

    /// Sends all buffered requests.
    void flush();

    /// Adds `mask` to the events that this connection selects on the root window.
    void selectRootEvents(std::uint32_t mask) { selectEvents(root(), mask); }
    /// Adds `mask` to the events that this connection selects on a window of another client. A connection has
    /// one event mask per window, so setting the attribute directly would deselect the events of the other
    /// callers, which must use different events.
    void selectEvents(xcb_window_t window, std::uint32_t mask);
    /// Removes `mask` from the events that this connection selects on `window`. Sends nothing if none of them
    /// is selected.
    void deselectEvents(xcb_window_t window, std::uint32_t mask);

    /// Reads the events that have arrived and delivers the queued events, in the order of `EventQueue`, one
    /// turn each. Begins no further event after `kLongestDispatch`; the rest is delivered through the main
    /// queue. Calls the `onLost` callbacks when the connection is lost.
    void dispatch();
    static constexpr std::chrono::milliseconds kLongestDispatch{10};

    /// Waits at most `bound` for an event that `isExpected` accepts, and consumes that event. All other
    /// events are queued and delivered later. Returns false on timeout or when the connection is
    /// lost.
    bool waitFor(const std::function<bool(const Event&)>& isExpected, std::chrono::milliseconds bound);

    /// Calls `handler` with every event when it is delivered, until the returned subscription is destroyed.
    [[nodiscard]] SubscriptionPtr onEvent(std::function<void(const Event&)> handler);
    /// Calls `observer` with every event as soon as it is read, even during a wait, until the returned
    /// subscription is destroyed. Caches use it to invalidate values that the event makes stale. The observer
    /// must not use the connection.
    [[nodiscard]] SubscriptionPtr onRead(std::function<void(const Event&)> observer);
    /// Calls `hook` at the end of each turn, until the returned subscription is destroyed. The hook may use
    /// the connection; what it requests is sent before the turn closes.
    [[nodiscard]] SubscriptionPtr onEndTurn(std::function<void()> hook);
    /// Calls `lost` once when the connection is lost. The file descriptor stays readable from then on, so the
    /// callback must stop watching it.
    [[nodiscard]] SubscriptionPtr onLost(std::function<void()> lost);

    /// Opens a turn unless one is open, which guarantees that the `onEndTurn` hooks run.
    void beginTurn();
    /// Returns a serial number for the open turn, or for the next one when none is open. Caches compare it to
    /// find out whether their values are from this turn.
    [[nodiscard]] std::uint64_t turn() const { return m_turn; }

    /// Returns how many round trips were waited for so far. Replies to requests that were sent together count
    /// once.
    [[nodiscard]] std::size_t roundTrips() const { return m_roundTrips; }

private:
    Connection(OpenedDisplay display, MainQueuePort& queue);

    void beginReply();
    void endReply();
    void readArrived(MainQueuePort::TimePoint end);
    void readQueued();
    void comeBackForTheRest();
    bool take(Reply<Event> event, const std::function<bool(const Event&)>& isExpected);
    void scheduleDispatch();
    void scheduleEndTurn();
    void endTurn();
    void reportLoss();

    XcbConnection m_xcb;
    MainQueuePort& m_queue;
    int m_screenNumber;
    const xcb_screen_t* m_screen;
    Atoms m_atoms;
    Extensions m_extensions;
    std::unordered_map<xcb_window_t, std::uint32_t> m_eventMasks; // all events selected, by window
    EventQueue m_events;                                          // read but not delivered yet
    Signal<const Event&> m_handlers;
    Signal<const Event&> m_observers;
    Signal<> m_endTurnHooks;
    Signal<> m_lossHandlers;
    SubscriptionPtr m_scheduledDispatch; // null when none is pending
    SubscriptionPtr m_scheduledEndTurn;  // null when none is pending
    bool m_turnOpen = false;
    std::uint64_t m_turn = 1;
    bool m_endingTurn = false;
    bool m_lossReported = false;
    std::size_t m_roundTrips = 0;
    std::uint64_t m_writtenBeforeLastWait = 0; // in bytes
};

} // namespace tessarel::x11
