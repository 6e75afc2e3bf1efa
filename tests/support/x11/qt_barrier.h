// SPDX-License-Identifier: MIT

#pragma once

#include "support/x11/observer.h"

#include <QAbstractNativeEventFilter>
#include <QEventLoop>
#include <QGuiApplication>
#include <qguiapplication_platform.h>
#include <xcb/xcb.h>

#include <functional>

namespace tessarel::x11test {

/// Synchronises Qt, in this process, with the X server. Needs the application object.
class QtBarrier : public QAbstractNativeEventFilter {
public:
    explicit QtBarrier(Observer& observer) : m_observer(observer), m_window(xcb_generate_id(qt())) {
        xcb_create_window(qt(), XCB_COPY_FROM_PARENT, m_window, observer.root(), -1, -1, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
        qGuiApp->installNativeEventFilter(this);
    }
    QtBarrier(const QtBarrier&) = delete;
    QtBarrier& operator=(const QtBarrier&) = delete;
    ~QtBarrier() override {
        qGuiApp->removeNativeEventFilter(this);
        xcb_destroy_window(qt(), m_window);
    }

    /// Waits until the server has processed all requests of Qt, Qt has handled all events sent before that,
    /// and the events that followed within Qt are handled. Returns false if this does not happen.
    [[nodiscard]] bool pass() {
        m_isPassed = false;
        if (!own(xcb_get_input_focus_reply(qt(), xcb_get_input_focus(qt()), nullptr)))
            return false;
        xcb_client_message_event_t marker{};
        marker.response_type = XCB_CLIENT_MESSAGE;
        marker.format = 32;
        marker.window = m_window;
        marker.type = m_observer.x().atom("_TESSAREL_TEST_MARKER");
        xcb_send_event(m_observer.x().get(), 0, m_window, XCB_EVENT_MASK_NO_EVENT,
                       reinterpret_cast<const char*>(&marker));
        m_observer.x().roundTrip();
        return waitUntil([this] { return m_isPassed; });
    }

    /// Waits until `holds` returns true, while Qt's event loop runs. Returns false at the deadline.
    [[nodiscard]] bool waitUntil(const std::function<bool()>& holds) {
        return m_observer.waitUntil([&] {
            QEventLoop loop;
            while (loop.processEvents())
                continue;
            return holds();
        });
    }

    bool nativeEventFilter(const QByteArray&, void* message, qintptr*) override {
        const auto* const event = static_cast<const xcb_client_message_event_t*>(message);
        m_isPassed =
            m_isPassed || ((event->response_type & ~0x80) == XCB_CLIENT_MESSAGE && event->window == m_window);
        return false;
    }

private:
    static xcb_connection_t* qt() {
        return qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
    }

    Observer& m_observer;
    xcb_window_t m_window;
    bool m_isPassed = false;
};

} // namespace tessarel::x11test
