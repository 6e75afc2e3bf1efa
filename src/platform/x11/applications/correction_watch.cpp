// SPDX-License-Identifier: MIT

#include "platform/x11/applications/correction_watch.h"

#include "platform/x11/server/event.h"

#include <utility>

namespace tessarel::x11 {

namespace {

/// How often a late report looks whether the mouse button has been released.
constexpr std::chrono::milliseconds kReleaseInterval{100};

constexpr unsigned kAnyButton = XCB_BUTTON_MASK_1 | XCB_BUTTON_MASK_2 | XCB_BUTTON_MASK_3;

} // namespace

CorrectionWatch::CorrectionWatch(Connection& connection, ClientWindows& windows, MainQueuePort& queue)
    : m_connection(connection), m_windows(windows), m_queue(queue),
      m_observer(connection.onRead([this](const Connection::Event& event) { note(event); })),
      m_handler(connection.onEvent([this](const Connection::Event& event) { hear(event); })) {}

void CorrectionWatch::start(xcb_window_t window) {
    m_connection.selectEvents(window, XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    m_watched[window] = {m_queue.asyncAfter(kDuration, [this, window] { stop(window); })};
}

void CorrectionWatch::report(xcb_window_t window) {
    start(window);
    m_windows.forgetFrame(window);
    if (!examine(window))
        m_watched[window].report = m_queue.asyncAfter(kReleaseInterval, [this, window] { report(window); });
}

void CorrectionWatch::stop(xcb_window_t window) {
    m_watched.erase(window);
    m_connection.deselectEvents(window, XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    m_connection.flush();
}

/// Synthetic events count as well: with them a window manager reports that it has moved the frame.
void CorrectionWatch::note(const Connection::Event& event) {
    if (eventType(event) != XCB_CONFIGURE_NOTIFY)
        return;
    const auto watched = m_watched.find(eventAs<xcb_configure_notify_event_t>(event).window);
    if (watched != m_watched.end())
        watched->second.hasChanged = true;
}

/// Handles all changes that have been read so far at once.
void CorrectionWatch::hear(const Connection::Event& event) {
    if (eventType(event) != XCB_CONFIGURE_NOTIFY)
        return;
    const xcb_window_t window = eventAs<xcb_configure_notify_event_t>(event).window;
    const auto watched = m_watched.find(window);
    if (watched != m_watched.end() && std::exchange(watched->second.hasChanged, false))
        examineChange(window);
}

/// A key that is pressed while a program changes its window in steps is handled before the last step is
/// delivered, but its reads already return the new frame. The change stays noted, because the cached frame
/// may be older.
void CorrectionWatch::catchUp(xcb_window_t window) {
    const auto watched = m_watched.find(window);
    if (watched != m_watched.end() && watched->second.hasChanged)
        examineChange(window);
}

/// A change while a mouse button is down is the user's.
void CorrectionWatch::examineChange(xcb_window_t window) {
    if (!examine(window))
        stop(window);
}

/// Reads the frame instead of taking it from the event, whose position is relative to the frame window.
bool CorrectionWatch::examine(xcb_window_t window) {
    const auto cookie = xcb_query_pointer(m_connection.xcb(), m_connection.root());
    const auto frame = m_windows.frame(window);
    const auto pointer = m_connection.reply<xcb_query_pointer_reply>(cookie);
    if (!frame || !pointer)
        return true;
    if ((pointer->mask & kAnyButton) != 0)
        return false;
    if (frame->states == WindowStates{})
        m_corrections.send(window, frame->outer());
    return true;
}

SubscriptionPtr
CorrectionWatch::onCorrection(std::function<void(xcb_window_t window, const Rect& outer)> corrected) {
    return m_corrections.connect(std::move(corrected));
}

} // namespace tessarel::x11
