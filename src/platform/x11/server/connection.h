#pragma once

#include "model/subscription.h"
#include "platform/x11/server/atoms.h"
#include "platform/x11/server/callback_list.h"
#include "platform/x11/server/extensions.h"
#include "platform/x11/server/reply.h"
#include "ports/main_queue_port.h"

#include <xcb/xcb.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>

namespace tessarel::x11 {

/// The program's own line to the X server; nobody else reads from it, so waiting on it is safe.
///
/// Its owner watches `fileDescriptor()` and calls `dispatch()` whenever it is readable. Nothing else wakes
/// the program: what is left over from a wait comes back through the main queue, and without events there are
/// no turns.
///
/// A *turn* is what happens between two events. What is read from the server may be kept until the turn ends,
/// and what is written may be collected until then. A turn begins with the first use of `xcb()`; it ends
/// after the event being delivered, or at the next turn of the main queue.
///
/// Once the server has gone every reply is null and every wait ends at once.
class Connection {
public:
    using Event = xcb_generic_event_t;

    struct Opened {
        std::unique_ptr<Connection> connection; ///< null on failure
        std::string failure;                    ///< one readable sentence
    };

    /// Connects to `displayName`, or to $DISPLAY when it is null. `queue` outlives the connection.
    [[nodiscard]] static Opened open(const char* displayName, MainQueuePort& queue);

    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    ~Connection();

    /// For requests. Replies and errors only by `reply` and `succeeds`: xcb reads events along with them.
    [[nodiscard]] xcb_connection_t* xcb();
    /// The same without a turn, whose end would cost another round of the loop: for what nobody keeps.
    [[nodiscard]] xcb_connection_t* xcbWithoutTurn() const { return m_xcb.get(); }
    [[nodiscard]] int fileDescriptor() const;
    [[nodiscard]] xcb_window_t root() const { return m_screen->root; }
    [[nodiscard]] int screenNumber() const { return m_screenNumber; }
    [[nodiscard]] const xcb_screen_t& screen() const { return *m_screen; }
    [[nodiscard]] xcb_atom_t atom(Atom atom) const { return m_atoms[atom]; }
    [[nodiscard]] const Extensions& extensions() const { return m_extensions; }
    [[nodiscard]] bool isLost() const;

    /// Number of an atom by name, asked for on the spot.
    [[nodiscard]] xcb_atom_t internAtom(std::string_view name);

    /// The reply to a request: `reply<xcb_get_geometry_reply>(cookie)`. Null when the request failed.
    template <auto kReplyFunction, class Cookie>
    [[nodiscard]] auto reply(Cookie cookie) {
        beginReply();
        xcb_generic_error_t* error = nullptr;
        auto* const answer = kReplyFunction(m_xcb.get(), cookie, &error);
        const Reply<xcb_generic_error_t> swallowed(error);
        endReply();
        return Reply<std::remove_pointer_t<decltype(answer)>>(answer);
    }

    /// Whether a checked request without a reply went through: one round trip for all that were sent before.
    [[nodiscard]] bool succeeds(xcb_void_cookie_t cookie);

    /// Sends what has been requested so far.
    void flush();

    /// Lets the bits of `mask` report events of the root window, besides those others have asked for.
    void selectRootEvents(std::uint32_t mask);

    /// Reads what has arrived and delivers every event that waits, in order.
    void dispatch();

    /// Waits for the event that `isExpected` accepts, at most `bound`. The event is used up; all others are
    /// delivered later, in order. False when it did not come.
    bool waitFor(const std::function<bool(const Event&)>& isExpected, std::chrono::milliseconds bound);

    /// Calls `handler` with every event, once its turn has come.
    [[nodiscard]] SubscriptionPtr onEvent(std::function<void(const Event&)> handler);
    /// Calls `observer` with every event the moment it is read, even in the middle of a wait: for caches,
    /// which must not answer with what the event has made untrue. It may not use the connection.
    [[nodiscard]] SubscriptionPtr onRead(std::function<void(const Event&)> observer);
    /// Calls `hook` at the end of each turn; it may use the connection.
    [[nodiscard]] SubscriptionPtr onEndTurn(std::function<void()> hook);
    /// Calls `lost` once when the server has gone. The file descriptor stays readable: stop watching it.
    [[nodiscard]] SubscriptionPtr onLost(std::function<void()> lost);

    /// Makes sure that a turn is under way, so that its end comes.
    void beginTurn();
    /// Number of the turn under way, or of the next one.
    [[nodiscard]] std::uint64_t turn() const { return m_turn; }

    /// How often an answer had to be waited for so far; replies to requests sent together count once.
    [[nodiscard]] std::size_t roundTrips() const { return m_roundTrips; }

private:
    Connection(xcb_connection_t* xcb, int screenNumber, MainQueuePort& queue);

    void beginReply();
    void endReply();
    void readQueued();
    void comeBackForTheRest();
    bool take(Reply<Event> event, const std::function<bool(const Event&)>& isExpected);
    void scheduleDispatch();
    void scheduleEndTurn();
    void endTurn();
    void reportLoss();

    struct Disconnect {
        void operator()(xcb_connection_t* xcb) const { xcb_disconnect(xcb); }
    };

    std::unique_ptr<xcb_connection_t, Disconnect> m_xcb;
    MainQueuePort& m_queue;
    int m_screenNumber;
    const xcb_screen_t* m_screen;
    Atoms m_atoms;
    Extensions m_extensions;
    std::uint32_t m_rootEventMask = 0;
    std::deque<Reply<Event>> m_events; // read and not delivered yet
    CallbackList<const Event&> m_handlers;
    CallbackList<const Event&> m_observers;
    CallbackList<> m_endTurnHooks;
    CallbackList<> m_lossHandlers;
    std::shared_ptr<Connection*> m_self; // shared with work on the main queue, which may outlive us
    bool m_dispatchScheduled = false;
    bool m_endTurnScheduled = false;
    bool m_turnOpen = false;
    std::uint64_t m_turn = 1;
    bool m_endingTurn = false;
    bool m_lossReported = false;
    std::size_t m_roundTrips = 0;
    std::uint64_t m_writtenBeforeLastWait = 0; // bytes
};

} // namespace tessarel::x11
