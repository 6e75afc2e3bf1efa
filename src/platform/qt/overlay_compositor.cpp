#include "platform/qt/overlay_compositor.h"

#include "platform/qt/overlay_connection.h"

#include <QCoreApplication>
#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <utility>

namespace tessarel::qt {

namespace {

struct FreeDeleter {
    void operator()(void* memory) const { std::free(memory); }
};
template <class T>
using Owned = std::unique_ptr<T, FreeDeleter>;

/// Number of the screen that $DISPLAY names.
int screenNumber() {
    char* host = nullptr;
    int display = 0;
    int screen = 0;
    const bool isValid = xcb_parse_display(nullptr, &host, &display, &screen) != 0;
    const Owned<char> owned(host);
    return isValid ? screen : 0;
}

xcb_atom_t selection(xcb_connection_t* xcb) {
    const std::string name = "_NET_WM_CM_S" + std::to_string(screenNumber());
    const auto cookie = xcb_intern_atom(xcb, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const Owned<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(xcb, cookie, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

xcb_window_t ownerOf(xcb_connection_t* xcb, xcb_atom_t atom) {
    const auto cookie = xcb_get_selection_owner(xcb, atom);
    const Owned<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(xcb, cookie, nullptr));
    return reply ? reply->owner : xcb_window_t{XCB_WINDOW_NONE};
}

/// False when there is no such window any more.
bool watchEndOf(xcb_connection_t* xcb, xcb_window_t window) {
    const std::uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    const auto cookie = xcb_change_window_attributes_checked(xcb, window, XCB_CW_EVENT_MASK, &events);
    return Owned<xcb_generic_error_t>(xcb_request_check(xcb, cookie)) == nullptr;
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
    constexpr unsigned kSentByClient = 0x80;
    if ((event.response_type & ~kSentByClient) != XCB_DESTROY_NOTIFY || event.window != m_owner)
        return false;
    m_owner = XCB_WINDOW_NONE;
    m_gone();
    return false;
}

} // namespace tessarel::qt
