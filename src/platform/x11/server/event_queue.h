// SPDX-License-Identifier: MIT

#pragma once

#include "platform/x11/server/reply.h"

#include <xcb/xcb.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <unordered_set>
#include <vector>

namespace tessarel::x11 {

/// Returns whether another client has made up an event of a kind that only the server sends.
///
/// Two kinds have to be accepted from clients: a ClientMessage is always sent by one, and window managers
/// report with a ConfigureNotify that they have moved a frame (ICCCM 4.1.5).
[[nodiscard]] bool isForged(const xcb_generic_event_t& event);

/// The events that have been read and not delivered yet.
///
/// Any client can cause events faster than they can be handled, so the queue does not keep the order in which
/// they were read. It merges and reorders them by two rules.
///
/// **Merging.** Most events say only that something has changed: PropertyNotify, ConfigureNotify,
/// MappingNotify and the events of extensions. Their handlers read the present state from the server. While
/// such a *notice* waits, an equal one is dropped: the state that is read when the first is delivered is
/// newer than both. Once a notice has been taken, the next equal one is queued again, also while the first is
/// still being handled. Equal notices concern the same property, window or keyboard map.
///
/// A request of another client, a ClientMessage or a SelectionRequest, merges with one that waits and says
/// the same: one reply serves both. No more than `kMostRequests` wait; beyond them, requests are dropped.
///
/// **Overtaking.** These events are *urgent* and delivered first, among themselves in the order in which they
/// were read:
///
/// - keys and the mouse. So a press comes before its movements and its release;
/// - notices about the keyboard map and about displays. A key is handled with the map that it was pressed
///   with, or a newer one;
/// - notices of the properties that `Urgent` names: the list of managed windows and the active window. A
///   window that has closed before a key was pressed is therefore known to have closed when the key is
///   handled. Otherwise the key would find the record of the closed window for a new one with the same id.
///
/// An urgent event overtakes all others: changes of other properties, frames and messages of clients. Whoever
/// handles a key reads what it needs from the server, or from caches that the same events have invalidated as
/// soon as they were read (`Connection::onRead`).
///
/// The others keep their order, too. An event that creates, maps, unmaps, reparents or destroys a window ends
/// the merging of those that were read before it, since the id may name another window from then on.
///
/// Whenever `kMostInARow` urgent events have been taken in succession, another one follows, so a flood of
/// urgent events does not hold the others up for ever.
///
/// The memory for notices depends on how many different ones wait, not on how often they were sent. All other
/// events are kept one by one: input, and windows that are created or mapped.
class EventQueue {
public:
    using Event = xcb_generic_event_t;

    static constexpr int kMostInARow = 16;
    static constexpr std::size_t kMostRequests = 1000;

    /// Names the notices of the root window that are urgent.
    struct Urgent {
        xcb_window_t root = XCB_WINDOW_NONE;
        std::vector<xcb_atom_t> properties;
    };

    explicit EventQueue(Urgent urgent);

    /// Adds an event that has just been read, unless it merges with one that waits.
    void add(Reply<Event> event);
    /// Removes and returns the event that is due; null if the queue is empty.
    [[nodiscard]] Reply<Event> take();

    [[nodiscard]] bool empty() const { return m_urgent.events.empty() && m_others.events.empty(); }
    [[nodiscard]] std::size_t size() const { return m_urgent.events.size() + m_others.events.size(); }

private:
    /// What makes notices equal.
    struct Notice {
        std::uint8_t type = 0; ///< with the SendEvent bit
        std::uint8_t detail = 0;
        xcb_window_t window = XCB_WINDOW_NONE;
        xcb_atom_t property = XCB_ATOM_NONE;
        std::array<std::uint32_t, 5> contents{}; ///< of a request

        bool operator==(const Notice&) const = default;
    };
    struct NoticeHash {
        [[nodiscard]] std::size_t operator()(const Notice& notice) const;
    };
    /// Events that keep their order.
    struct Lane {
        std::deque<Reply<Event>> events;
        std::unordered_set<Notice, NoticeHash> waiting; ///< the notices with which others merge

        [[nodiscard]] Reply<Event> takeFirst();
    };

    [[nodiscard]] static std::optional<Notice> noticeOf(const Event& event);
    [[nodiscard]] bool isUrgent(const Event& event) const;
    [[nodiscard]] Reply<Event> takeFirstOther();

    Urgent m_names;
    Lane m_urgent;
    Lane m_others;
    int m_inARow = 0;           // urgent events that have been taken since the last other one
    std::size_t m_requests = 0; // that wait
};

} // namespace tessarel::x11
