// SPDX-License-Identifier: MIT

#include "support/x11/event_flood.h"

#include "support/x11/keyboard.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

namespace tessarel::x11test {

namespace {

const char* propertyOf(FloodKind kind) {
    switch (kind) {
    case FloodKind::ActiveWindow:
        return "_NET_ACTIVE_WINDOW";
    case FloodKind::ClientList:
        return "_NET_CLIENT_LIST";
    case FloodKind::WorkArea:
        return "_NET_WORKAREA";
    case FloodKind::WindowStrut:
        return "_NET_WM_STRUT_PARTIAL";
    case FloodKind::Commands:
        return "_TESSAREL_COMMAND";
    default:
        return "_FLOOD";
    }
}

} // namespace

EventFlood::EventFlood(const std::string& display, FloodKind kind, int perSecond, xcb_window_t window)
    : m_x(display), m_kind(kind), m_window(window), m_property(m_x.atom(propertyOf(kind))) {
    if (kind == FloodKind::Windows)
        openWindow();
    else if (kind == FloodKind::Commands)
        createSender();
    m_x.roundTrip();
    start(perSecond);
}

EventFlood::~EventFlood() {
    stop();
    m_x.roundTrip();
}

void EventFlood::flush() {
    m_x.flush();
    while (own(xcb_poll_for_event(m_x.get())) != nullptr) {
        // The replies to commands need no reaction, but the server keeps them until they are read.
    }
}

void EventFlood::send() {
    switch (m_kind) {
    case FloodKind::RootProperty:
    case FloodKind::WorkArea:
        touch(m_x.root(), m_property, XCB_ATOM_CARDINAL);
        break;
    case FloodKind::ActiveWindow:
    case FloodKind::ClientList:
        touch(m_x.root(), m_property, XCB_ATOM_WINDOW);
        break;
    case FloodKind::WindowProperty:
    case FloodKind::WindowStrut:
        touch(m_window, m_property, XCB_ATOM_CARDINAL);
        break;
    case FloodKind::ForgedConfigure: {
        xcb_configure_notify_event_t event{};
        event.response_type = XCB_CONFIGURE_NOTIFY;
        event.event = event.window = m_window;
        event.width = event.height = 1;
        forge(event, m_window);
        break;
    }
    case FloodKind::ForgedKeys: {
        xcb_key_press_event_t event{};
        event.response_type = XCB_KEY_PRESS;
        event.detail = key::kLeft;
        event.state = kControlAlt;
        event.root = event.event = m_x.root();
        forge(event, m_x.root());
        break;
    }
    case FloodKind::Windows:
        if (sent() % 2 == 0)
            xcb_map_window(m_x.get(), m_window);
        else
            xcb_unmap_window(m_x.get(), m_window);
        break;
    case FloodKind::Commands:
        sendCommand();
        break;
    }
}

/// Appends nothing to a property: the server reports a change, although the value stays.
void EventFlood::touch(xcb_window_t window, xcb_atom_t property, xcb_atom_t type) {
    xcb_change_property(m_x.get(), XCB_PROP_MODE_APPEND, window, property, type, 32, 0, nullptr);
}

/// Creates a window that no window manager gives the focus.
void EventFlood::openWindow() {
    xcb_connection_t* const x = m_x.get();
    m_window = xcb_generate_id(x);
    xcb_create_window(x, XCB_COPY_FROM_PARENT, m_window, m_x.root(), 5, 5, 50, 50, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    constexpr std::array<std::uint32_t, 9> kWithoutInput{1, 0};
    xcb_change_property(x, XCB_PROP_MODE_REPLACE, m_window, XCB_ATOM_WM_HINTS, XCB_ATOM_WM_HINTS, 32,
                        kWithoutInput.size(), kWithoutInput.data());
    constexpr std::uint32_t kNever = 0;
    xcb_change_property(x, XCB_PROP_MODE_REPLACE, m_window, m_x.atom("_NET_WM_USER_TIME"), XCB_ATOM_CARDINAL,
                        32, 1, &kNever);
}

/// Creates the window on which commands stand.
void EventFlood::createSender() {
    m_text = m_x.atom("UTF8_STRING");
    m_selection = m_x.atom("_TESSAREL_COMMANDS_S0");
    m_window = xcb_generate_id(m_x.get());
    xcb_create_window(m_x.get(), XCB_COPY_FROM_PARENT, m_window, m_x.root(), -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
}

/// The words have to be set each time, because an answer replaces them.
void EventFlood::sendCommand() {
    using namespace std::string_view_literals;
    constexpr auto kWords = "list\0layouts\0"sv;
    xcb_change_property(m_x.get(), XCB_PROP_MODE_REPLACE, m_window, m_property, m_text, 8, kWords.size(),
                        kWords.data());
    xcb_convert_selection(m_x.get(), m_window, m_selection, m_property, m_property, XCB_CURRENT_TIME);
}

/// Sends a made-up event to all clients that select the structure or the properties of `destination`.
template <class Event>
void EventFlood::forge(const Event& event, xcb_window_t destination) {
    std::array<char, 32> bytes{};
    static_assert(sizeof event <= bytes.size());
    std::copy_n(reinterpret_cast<const char*>(&event), sizeof event, bytes.begin());
    xcb_send_event(m_x.get(), 0, destination,
                   XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE, bytes.data());
}

} // namespace tessarel::x11test
