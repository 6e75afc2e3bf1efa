// SPDX-License-Identifier: MIT

#include "platform/qt_x11/overlay/compositor_watch.h"

#include "platform/qt_x11/qt_connection.h"

#include <QCoreApplication>
#include <xcb/xcb.h>

#include <string>
#include <utility>

namespace tessarel::qt {

namespace {

/// Returns the selection that a compositing manager owns while it runs (EWMH).
xcb_atom_t selection(xcb_connection_t* xcb) {
    return internAtom(xcb, "_NET_WM_CM_S" + std::to_string(screenNumber()));
}

/// Selects DestroyNotify of `window`. Returns false when the window does not exist, which means that the
/// compositor has just exited.
bool watchEndOf(xcb_connection_t* xcb, xcb_window_t window) {
    const std::uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    const auto cookie = xcb_change_window_attributes_checked(xcb, window, XCB_CW_EVENT_MASK, &events);
    return Reply<xcb_generic_error_t>(xcb_request_check(xcb, cookie)) == nullptr;
}

} // namespace

CompositorWatch::CompositorWatch(std::function<void()> gone) : m_gone(std::move(gone)) {
    QCoreApplication::instance()->installNativeEventFilter(this);
}

bool CompositorWatch::isRunning() {
    xcb_connection_t* const xcb = qtConnection();
    if (xcb == nullptr)
        return true;
    const xcb_window_t owner = ownerOf(xcb, selection(xcb));
    const bool isRunning = owner != XCB_WINDOW_NONE && watchEndOf(xcb, owner);
    m_owner = isRunning ? owner : xcb_window_t{XCB_WINDOW_NONE};
    return isRunning;
}

bool CompositorWatch::nativeEventFilter(const QByteArray& eventType, void* message, qintptr* /*result*/) {
    if (m_owner == XCB_WINDOW_NONE || eventType != "xcb_generic_event_t")
        return false;
    const auto& event = *static_cast<const xcb_destroy_notify_event_t*>(message);
    constexpr unsigned kSentByClient = 0x80; // the SendEvent bit
    if ((event.response_type & ~kSentByClient) != XCB_DESTROY_NOTIFY || event.window != m_owner)
        return false;
    m_owner = XCB_WINDOW_NONE;
    m_gone();
    return false;
}

} // namespace tessarel::qt
