// SPDX-License-Identifier: MIT

#include "platform/qt_x11/overlay/stacking_watch.h"

#include "platform/qt_x11/qt_connection.h"

#include <QCoreApplication>
#include <xcb/xcb.h>

#include <utility>

namespace tessarel::qt {

namespace {

/// Returns the events that this connection selects on `window`.
std::uint32_t selectedEvents(xcb_connection_t* xcb, xcb_window_t window) {
    const auto cookie = xcb_get_window_attributes(xcb, window);
    const Reply<xcb_get_window_attributes_reply_t> reply(
        xcb_get_window_attributes_reply(xcb, cookie, nullptr));
    return reply ? reply->your_event_mask : 0U;
}

void select(xcb_connection_t* xcb, xcb_window_t window, std::uint32_t events) {
    xcb_change_window_attributes(xcb, window, XCB_CW_EVENT_MASK, &events);
    xcb_flush(xcb);
}

} // namespace

StackingWatch::StackingWatch(std::uint32_t window, std::function<void()> restacked)
    : m_window(window), m_restacked(std::move(restacked)) {
    xcb_connection_t* const xcb = qtConnection();
    if (xcb == nullptr)
        return;
    QCoreApplication::instance()->installNativeEventFilter(this);
    m_root = screenOf(xcb).root;
    m_otherEvents = selectedEvents(xcb, m_root);
    select(xcb, m_root, m_otherEvents | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
}

StackingWatch::~StackingWatch() {
    if (xcb_connection_t* const xcb = qtConnection())
        select(xcb, m_root, m_otherEvents);
}

bool StackingWatch::nativeEventFilter(const QByteArray& eventType, void* message, qintptr* /*result*/) {
    if (eventType == "xcb_generic_event_t" && isRestacked(message))
        m_restacked();
    return false;
}

/// Returns whether `event` may have brought another window to the front.
bool StackingWatch::isRestacked(const void* event) {
    constexpr unsigned kSentByClient = 0x80; // the SendEvent bit
    switch (static_cast<const xcb_generic_event_t*>(event)->response_type & ~kSentByClient) {
    case XCB_MAP_NOTIFY: {
        const auto& mapped = *static_cast<const xcb_map_notify_event_t*>(event);
        return mapped.event == m_root && mapped.window != m_window;
    }
    case XCB_CONFIGURE_NOTIFY: {
        const auto& configured = *static_cast<const xcb_configure_notify_event_t*>(event);
        if (configured.event != m_root || configured.window == m_window)
            return false;
        const auto below = m_below.find(configured.window);
        const bool isKnown = below != m_below.end() && below->second == configured.above_sibling;
        m_below[configured.window] = configured.above_sibling;
        return !isKnown || configured.above_sibling == m_window;
    }
    case XCB_CIRCULATE_NOTIFY:
        return static_cast<const xcb_circulate_notify_event_t*>(event)->event == m_root;
    default:
        return false;
    }
}

} // namespace tessarel::qt
