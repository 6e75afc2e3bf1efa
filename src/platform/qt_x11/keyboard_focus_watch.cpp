// SPDX-License-Identifier: MIT

#include "platform/qt_x11/keyboard_focus_watch.h"

#include <QCoreApplication>
#include <xcb/xproto.h>

#include <utility>

namespace tessarel::qt {

namespace {

/// Returns whether the focus really came to the window or left it. Ignores events that a keyboard grab
/// causes, that follow the pointer, and that report a move of the focus within the window.
bool isOfTheWindow(const xcb_focus_in_event_t& event) {
    return event.mode != XCB_NOTIFY_MODE_GRAB && event.mode != XCB_NOTIFY_MODE_UNGRAB &&
           event.detail != XCB_NOTIFY_DETAIL_POINTER && event.detail != XCB_NOTIFY_DETAIL_INFERIOR;
}

} // namespace

KeyboardFocusWatch::KeyboardFocusWatch(Handler changed) : m_changed(std::move(changed)) {
    QCoreApplication::instance()->installNativeEventFilter(this);
}

// The base class removes the event filter.
KeyboardFocusWatch::~KeyboardFocusWatch() = default;

bool KeyboardFocusWatch::nativeEventFilter(const QByteArray& eventType, void* message, qintptr* /*result*/) {
    if (eventType != "xcb_generic_event_t")
        return false;
    constexpr int kWithoutSender = 0x7f; // masks out the SendEvent bit
    const int type = static_cast<const xcb_generic_event_t*>(message)->response_type & kWithoutSender;
    if (type != XCB_FOCUS_IN && type != XCB_FOCUS_OUT)
        return false;
    const auto& event = *static_cast<const xcb_focus_in_event_t*>(message); // FocusOut has this layout too
    if (isOfTheWindow(event))
        m_changed(type == XCB_FOCUS_IN ? Change::Gained : Change::Lost, event.event);
    return false;
}

} // namespace tessarel::qt
