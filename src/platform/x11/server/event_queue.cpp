// SPDX-License-Identifier: MIT

#include "platform/x11/server/event_queue.h"

#include "platform/x11/server/event.h"

#include <algorithm>
#include <utility>

namespace tessarel::x11 {

namespace {

/// Event types from here on belong to extensions: those of the keyboard (XKB) and the displays (RandR).
constexpr std::uint8_t kFirstExtensionEvent = 64;

/// Returns whether the event is the user's input. The events of XInput 2 are generic ones.
bool isInput(std::uint8_t type) {
    return (type >= XCB_KEY_PRESS && type <= XCB_LEAVE_NOTIFY) || type == XCB_GE_GENERIC;
}

/// Returns whether a window begins or ceases to exist or to be shown with the event.
bool changesWindow(std::uint8_t type) {
    return type >= XCB_CREATE_NOTIFY && type <= XCB_REPARENT_NOTIFY;
}

/// Returns whether another client wants something of this one.
bool isRequest(std::uint8_t type) {
    return type == XCB_CLIENT_MESSAGE || type == XCB_SELECTION_REQUEST;
}

} // namespace

bool isForged(const xcb_generic_event_t& event) {
    const std::uint8_t type = eventType(event);
    return type != event.response_type && type != XCB_CLIENT_MESSAGE && type != XCB_CONFIGURE_NOTIFY;
}

EventQueue::EventQueue(Urgent urgent) : m_names(std::move(urgent)) {}

std::size_t EventQueue::NoticeHash::operator()(const Notice& notice) const {
    constexpr std::size_t kMultiplier = 0x9E3779B97F4A7C15; // spreads neighbouring ids
    std::size_t hash = notice.type;
    for (const std::size_t part :
         {std::size_t{notice.detail}, std::size_t{notice.window}, std::size_t{notice.property}})
        hash = (hash ^ part) * kMultiplier;
    for (const std::uint32_t part : notice.contents)
        hash = (hash ^ part) * kMultiplier;
    return hash;
}

/// Returns what the event says has changed, or `std::nullopt` if its handlers need the event itself.
std::optional<EventQueue::Notice> EventQueue::noticeOf(const Event& event) {
    const std::uint8_t type = eventType(event);
    Notice notice{.type = event.response_type};
    if (type == XCB_PROPERTY_NOTIFY) {
        notice.window = eventAs<xcb_property_notify_event_t>(event).window;
        notice.property = eventAs<xcb_property_notify_event_t>(event).atom;
    } else if (type == XCB_CONFIGURE_NOTIFY) {
        notice.window = eventAs<xcb_configure_notify_event_t>(event).window;
    } else if (type == XCB_MAPPING_NOTIFY) {
        notice.detail = eventAs<xcb_mapping_notify_event_t>(event).request;
    } else if (type >= kFirstExtensionEvent) {
        notice.detail = event.pad0; // the kind of the event, for XKB and RandR
    } else if (type == XCB_CLIENT_MESSAGE) {
        const auto& message = eventAs<xcb_client_message_event_t>(event);
        notice.detail = message.format;
        notice.window = message.window;
        notice.property = message.type;
        std::ranges::copy(message.data.data32, notice.contents.begin());
    } else if (type == XCB_SELECTION_REQUEST) {
        const auto& request = eventAs<xcb_selection_request_event_t>(event);
        notice.window = request.requestor;
        notice.property = request.property;
        notice.contents = {request.owner, request.selection, request.target, request.time};
    } else {
        return std::nullopt;
    }
    return notice;
}

bool EventQueue::isUrgent(const Event& event) const {
    const std::uint8_t type = eventType(event);
    if (type == XCB_PROPERTY_NOTIFY) {
        const auto& change = eventAs<xcb_property_notify_event_t>(event);
        return change.window == m_names.root &&
               std::ranges::find(m_names.properties, change.atom) != m_names.properties.end();
    }
    return isInput(type) || type == XCB_MAPPING_NOTIFY || type >= kFirstExtensionEvent;
}

void EventQueue::add(Reply<Event> event) {
    Lane& lane = isUrgent(*event) ? m_urgent : m_others;
    const bool isOneMoreRequest = isRequest(eventType(*event));
    if (isOneMoreRequest && m_requests >= kMostRequests)
        return;
    const auto notice = noticeOf(*event);
    if (notice && !lane.waiting.insert(*notice).second)
        return;
    if (isOneMoreRequest)
        ++m_requests;
    if (changesWindow(eventType(*event)))
        lane.waiting.clear();
    lane.events.push_back(std::move(event));
}

Reply<EventQueue::Event> EventQueue::take() {
    const bool isTurnOfOthers = m_inARow >= kMostInARow && !m_others.events.empty();
    if (m_urgent.events.empty() || isTurnOfOthers) {
        m_inARow = 0;
        return takeFirstOther();
    }
    ++m_inARow;
    return m_urgent.takeFirst();
}

/// Requests are never urgent.
Reply<EventQueue::Event> EventQueue::takeFirstOther() {
    Reply<Event> event = m_others.takeFirst();
    if (event && isRequest(eventType(*event)))
        --m_requests;
    return event;
}

/// Forgets the notice of the event, also if it no longer merges: then it has been queued once more behind an
/// event that ended the merging, and a third one is queued needlessly at worst.
Reply<EventQueue::Event> EventQueue::Lane::takeFirst() {
    if (events.empty())
        return nullptr;
    Reply<Event> event = std::move(events.front());
    events.pop_front();
    if (const auto notice = noticeOf(*event))
        waiting.erase(*notice);
    return event;
}

} // namespace tessarel::x11
