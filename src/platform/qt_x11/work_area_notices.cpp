// SPDX-License-Identifier: MIT

#include "platform/qt_x11/work_area_notices.h"

#include "platform/qt_x11/qt_connection.h"

#include <QCoreApplication>
#include <xcb/xcb.h>

#include <algorithm>
#include <array>
#include <utility>

namespace tessarel::qt {

namespace {

constexpr std::uint8_t kSentByClient = 0x80;

} // namespace

WorkAreaNotices::WorkAreaNotices(MainQueuePort& queue) : m_queue(queue) {
    xcb_connection_t* const xcb = qtConnection();
    if (xcb == nullptr)
        return;
    m_workArea = internAtom(xcb, "_NET_WORKAREA");
    m_root = screenOf(xcb).root;
    m_window = xcb_generate_id(xcb);
    xcb_create_window(xcb, XCB_COPY_FROM_PARENT, m_window, m_root, -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_flush(xcb);
    QCoreApplication::instance()->installNativeEventFilter(this);
}

// The base class removes the event filter.
WorkAreaNotices::~WorkAreaNotices() {
    xcb_connection_t* const xcb = qtConnection();
    if (m_window == 0 || xcb == nullptr)
        return;
    xcb_destroy_window(xcb, m_window);
    xcb_flush(xcb);
}

/// Lets only our own notice pass. Changes that are reported before it arrives need no further one, because Qt
/// reads the work area after it. A notice that another client has made up counts as a change.
bool WorkAreaNotices::nativeEventFilter(const QByteArray& eventType, void* message, qintptr* /*result*/) {
    if (eventType != "xcb_generic_event_t")
        return false;
    const auto& event = *static_cast<const xcb_property_notify_event_t*>(message);
    const bool isSentByClient = (event.response_type & kSentByClient) != 0;
    if ((event.response_type & ~kSentByClient) != XCB_PROPERTY_NOTIFY || event.window != m_root ||
        event.atom != m_workArea)
        return false;
    if (isSentByClient && std::exchange(m_isSent, false))
        return false;
    if (!m_scheduledSend && !m_isSent)
        m_scheduledSend = m_queue.async([this] { sendNotice(); });
    return true;
}

void WorkAreaNotices::sendNotice() {
    m_scheduledSend.reset();
    m_isSent = true;
    xcb_property_notify_event_t notice{};
    notice.response_type = XCB_PROPERTY_NOTIFY;
    notice.window = m_root;
    notice.atom = m_workArea;
    std::array<char, 32> bytes{};
    std::copy_n(reinterpret_cast<const char*>(&notice), sizeof notice, bytes.begin());
    xcb_connection_t* const xcb = qtConnection();
    // With an empty event mask the server sends the event to the client that created the window.
    xcb_send_event(xcb, 0, m_window, XCB_EVENT_MASK_NO_EVENT, bytes.data());
    xcb_flush(xcb);
}

} // namespace tessarel::qt
