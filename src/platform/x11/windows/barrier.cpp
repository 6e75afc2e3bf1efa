// SPDX-License-Identifier: MIT

#include "platform/x11/windows/barrier.h"

#include "platform/x11/server/event.h"

#include <chrono>

namespace tessarel::x11 {

namespace {

/// Compositing window managers have been measured to take more than 0.25 s on a busy machine.
constexpr std::chrono::milliseconds kBound{1000};
/// After this time the wait requests again: pekwm sometimes leaves events unread until the next one arrives.
/// It is also the bound while the window manager is silent: short for a user who presses keys meanwhile, and
/// long compared with the usual reply, so that the wait itself notices a window manager that goes on.
constexpr std::chrono::milliseconds kPatience{100};
constexpr auto kRequests = kBound / kPatience;
// Each wait uses another x, so that a late event of a wait that timed out is not mistaken for that of a later
// wait. In pixels, outside the root window.
constexpr std::int32_t kNearest = -10;
constexpr std::int32_t kFarthest = -1000;

} // namespace

Barrier::Barrier(Connection& connection)
    : m_connection(connection),
      m_observer(connection.onRead([this](const Connection::Event& event) { note(event); })) {}

Barrier::~Barrier() {
    if (m_window != XCB_WINDOW_NONE)
        xcb_destroy_window(m_connection.xcb(), m_window);
}

/// Creates the window: never mapped and not override-redirect, so that its ConfigureRequests are redirected
/// to the window manager.
void Barrier::create() {
    m_x = kNearest;
    m_window = xcb_generate_id(m_connection.xcb());
    const std::uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_create_window(m_connection.xcb(), XCB_COPY_FROM_PARENT, m_window, m_connection.root(),
                      static_cast<std::int16_t>(m_x), kNearest, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                      XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
}

bool Barrier::wait() {
    if (m_window == XCB_WINDOW_NONE)
        create();
    m_first = m_x - kRequests > kFarthest ? m_x - 1 : kNearest;
    m_x = m_first + 1;
    request();
    if (m_silentTurn == m_connection.turn()) {
        m_connection.flush(); // the requests still have to go out
        return false;
    }
    const auto answers = [this](const Connection::Event& event) { return isAnswer(event); };
    bool answered = m_connection.waitFor(answers, kPatience);
    for (auto left = kRequests - 1; left > 0 && !answered && !m_isSilent; --left) {
        request();
        answered = m_connection.waitFor(answers, kPatience);
    }
    if (!answered) {
        m_silentTurn = m_connection.turn();
        m_isSilent = true;
    }
    return answered;
}

void Barrier::request() {
    --m_x;
    const auto x = static_cast<std::uint32_t>(m_x);
    xcb_configure_window(m_connection.xcb(), m_window, XCB_CONFIG_WINDOW_X, &x);
}

void Barrier::note(const Connection::Event& event) {
    if (isMove(event))
        m_isSilent = false;
}

/// Returns whether `event` is a move of the window. Only a real event counts. The window manager may also
/// send synthetic ones (ICCCM 4.1.5).
bool Barrier::isMove(const Connection::Event& event) const {
    return event.response_type == XCB_CONFIGURE_NOTIFY &&
           eventAs<xcb_configure_notify_event_t>(event).window == m_window;
}

bool Barrier::isAnswer(const Connection::Event& event) const {
    if (!isMove(event))
        return false;
    const auto x = eventAs<xcb_configure_notify_event_t>(event).x;
    return x <= m_first && x >= m_x; // a move that the last wait requested
}

} // namespace tessarel::x11
