// SPDX-License-Identifier: MIT

#include "platform/x11/server/connection.h"

#include <poll.h>
#include <utility>

namespace tessarel::x11 {

namespace {

// poll() runs in real time, even when a test drives the clock of the main queue.
using Clock = std::chrono::steady_clock;

/// Waits until the descriptor is readable or has failed. Returns false after `deadline`.
bool waitUntilReadable(int fileDescriptor, Clock::time_point deadline) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
    pollfd watched{fileDescriptor, POLLIN, 0};
    return left.count() > 0 && poll(&watched, 1, static_cast<int>(left.count())) != 0;
}

} // namespace

Connection::Opened Connection::open(const char* displayName, MainQueuePort& queue) {
    OpenedDisplay display = openDisplay(displayName);
    if (!display.screen)
        return {nullptr, std::move(display.failure)};
    // The constructor first interns the atoms; the extension replies arrive in that same round trip.
    Extensions::prefetch(display.xcb.get());
    std::unique_ptr<Connection> connection(new Connection(std::move(display), queue));
    connection->readQueued(); // xcb may have read events along with the replies
    return {std::move(connection), {}};
}

Connection::Connection(OpenedDisplay display, MainQueuePort& queue)
    : m_xcb(std::move(display.xcb)), m_queue(queue), m_screenNumber(display.screenNumber),
      m_screen(display.screen), m_atoms(m_xcb.get()), m_extensions(Extensions::query(m_xcb.get())),
      m_events({m_screen->root, {m_atoms[Atom::NetClientList], m_atoms[Atom::NetActiveWindow]}}) {}

Connection::~Connection() = default;

xcb_connection_t* Connection::xcb() {
    beginTurn();
    return m_xcb.get();
}

void Connection::beginTurn() {
    if (m_turnOpen)
        return;
    m_turnOpen = true;
    scheduleEndTurn();
}

int Connection::fileDescriptor() const {
    return xcb_get_file_descriptor(m_xcb.get());
}

bool Connection::isLost() const {
    return xcb_connection_has_error(m_xcb.get()) != 0;
}

xcb_atom_t Connection::internAtom(std::string_view name) {
    const auto answer = reply<xcb_intern_atom_reply>(
        xcb_intern_atom(xcb(), 0, static_cast<std::uint16_t>(name.size()), name.data()));
    return answer ? answer->atom : xcb_atom_t{XCB_ATOM_NONE};
}

bool Connection::succeeds(xcb_void_cookie_t cookie) {
    beginReply();
    const Reply<xcb_generic_error_t> error(xcb_request_check(m_xcb.get(), cookie));
    endReply();
    return !error && !isLost();
}

/// Flushes and counts a round trip. Only a wait that follows newly written requests counts; the replies to
/// requests that an earlier wait has flushed come with that earlier round trip.
void Connection::beginReply() {
    xcb_flush(m_xcb.get());
    const std::uint64_t written = xcb_total_written(m_xcb.get());
    if (written != m_writtenBeforeLastWait)
        ++m_roundTrips;
    m_writtenBeforeLastWait = written;
}

/// Collects the events that xcb has read together with the reply.
void Connection::endReply() {
    readQueued();
}

void Connection::flush() {
    xcb_flush(m_xcb.get());
    readQueued(); // when the socket is full, xcb reads while it writes
}

bool Connection::owns(xcb_window_t window) const {
    const xcb_setup_t* const setup = xcb_get_setup(m_xcb.get());
    return setup && (window & ~setup->resource_id_mask) == setup->resource_id_base;
}

/// Always sends the request: the id may have belonged to a window that has gone since.
void Connection::selectEvents(xcb_window_t window, std::uint32_t mask) {
    std::uint32_t& selected = m_eventMasks[window];
    selected |= mask;
    xcb_change_window_attributes(xcb(), window, XCB_CW_EVENT_MASK, &selected);
}

void Connection::deselectEvents(xcb_window_t window, std::uint32_t mask) {
    const auto selected = m_eventMasks.find(window);
    if (selected == m_eventMasks.end() || (selected->second & mask) == 0)
        return;
    selected->second &= ~mask;
    xcb_change_window_attributes(xcb(), window, XCB_CW_EVENT_MASK, &selected->second);
    if (selected->second == 0)
        m_eventMasks.erase(selected);
}

void Connection::dispatch() {
    const auto end = m_queue.now() + kLongestDispatch;
    readArrived(end);
    while (const Reply<Event> event = m_events.take()) {
        endTurn(); // values cached before this event may be out of date
        m_handlers.send(*event);
        endTurn();
        if (m_queue.now() >= end)
            break;
        if (!m_events.empty())
            readArrived(end); // a key may have arrived that overtakes the rest
    }
    if (isLost())
        reportLoss();
    else
        readQueued(); // what xcb has read does not make the file descriptor readable again
}

/// Reads the events that have arrived. Stops at `end`, in case more arrive all the time.
void Connection::readArrived(MainQueuePort::TimePoint end) {
    while (Reply<Event> event{xcb_poll_for_event(m_xcb.get())}) {
        take(std::move(event), nullptr);
        if (m_queue.now() >= end)
            break;
    }
}

bool Connection::waitFor(const std::function<bool(const Event&)>& isExpected,
                         std::chrono::milliseconds bound) {
    const auto deadline = Clock::now() + bound;
    xcb_flush(xcb());
    ++m_roundTrips;
    bool came = false;
    do {
        if (Reply<Event> event{xcb_poll_for_event(xcb())})
            came = take(std::move(event), isExpected);
        else if (isLost() || !waitUntilReadable(fileDescriptor(), deadline))
            break;
    } while (!came && Clock::now() < deadline);
    comeBackForTheRest();
    return came;
}

/// Passes an event that has just been read to the observers, then queues it for delivery. Returns true, and
/// does not queue the event, when it is the expected one. Drops errors and forged events.
bool Connection::take(Reply<Event> event, const std::function<bool(const Event&)>& isExpected) {
    constexpr std::uint8_t kError = 0; // of an unchecked request, usually because its window is gone
    if (event->response_type == kError || isForged(*event))
        return false;
    m_observers.send(*event);
    if (isExpected && isExpected(*event))
        return true;
    m_events.add(std::move(event));
    return false;
}

/// Takes over the events that xcb has already read from the socket, without reading more.
void Connection::readQueued() {
    while (Reply<Event> event{xcb_poll_for_queued_event(m_xcb.get())})
        take(std::move(event), nullptr);
    comeBackForTheRest();
}

/// Schedules a dispatch for queued events and for a lost connection: the file descriptor does not become
/// readable for data that xcb has already read.
void Connection::comeBackForTheRest() {
    if (!m_events.empty() || isLost())
        scheduleDispatch();
}

void Connection::scheduleDispatch() {
    if (m_scheduledDispatch || m_lossReported)
        return;
    m_scheduledDispatch = m_queue.async([this] {
        m_scheduledDispatch.reset();
        dispatch();
    });
}

/// Posts the end of the turn to the main queue, for turns that no event brings to an end.
void Connection::scheduleEndTurn() {
    if (m_scheduledEndTurn)
        return;
    m_scheduledEndTurn = m_queue.async([this] {
        m_scheduledEndTurn.reset();
        endTurn();
    });
}

/// Runs the hooks, sends their requests and closes the turn.
void Connection::endTurn() {
    // A hook must not end the turn that it runs in.
    if (!m_turnOpen || m_endingTurn)
        return;
    m_endingTurn = true;
    m_endTurnHooks.send();
    flush();
    m_turnOpen = false;
    m_endingTurn = false;
    ++m_turn;
}

void Connection::reportLoss() {
    if (std::exchange(m_lossReported, true))
        return;
    m_lossHandlers.send();
}

SubscriptionPtr Connection::onEvent(std::function<void(const Event&)> handler) {
    return m_handlers.connect(std::move(handler));
}

SubscriptionPtr Connection::onRead(std::function<void(const Event&)> observer) {
    return m_observers.connect(std::move(observer));
}

SubscriptionPtr Connection::onEndTurn(std::function<void()> hook) {
    return m_endTurnHooks.connect(std::move(hook));
}

SubscriptionPtr Connection::onLost(std::function<void()> lost) {
    return m_lossHandlers.connect(std::move(lost));
}

} // namespace tessarel::x11
