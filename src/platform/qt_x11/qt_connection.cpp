// SPDX-License-Identifier: MIT

#include "platform/qt_x11/qt_connection.h"

#include <QGuiApplication>
#include <xcb/xcb.h>

#include <cstddef>
#include <cstdint>

namespace tessarel::qt {

xcb_connection_t* qtConnection() {
    const auto* const x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 ? x11->connection() : nullptr;
}

int screenNumber() {
    // xcb allocates the host name even though only the screen is needed.
    char* host = nullptr;
    int display = 0;
    int screen = 0;
    const bool isValid = xcb_parse_display(nullptr, &host, &display, &screen) != 0;
    const std::unique_ptr<char, FreeDeleter> owned(host);
    return isValid ? screen : 0;
}

const xcb_screen_t& screenOf(xcb_connection_t* xcb) {
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(xcb));
    for (int i = screenNumber(); i > 0 && screens.rem > 1; --i)
        xcb_screen_next(&screens);
    return *screens.data;
}

xcb_atom_t internAtom(xcb_connection_t* xcb, std::string_view name) {
    const auto cookie = xcb_intern_atom(xcb, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(xcb, cookie, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

xcb_window_t ownerOf(xcb_connection_t* xcb, xcb_atom_t selection) {
    const auto cookie = xcb_get_selection_owner(xcb, selection);
    const Reply<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(xcb, cookie, nullptr));
    return reply ? reply->owner : xcb_window_t{XCB_WINDOW_NONE};
}

std::string announcedAccessibilityBus() {
    xcb_connection_t* const xcb = qtConnection();
    if (xcb == nullptr)
        return {};
    constexpr std::uint32_t kLength = 128; // of which Qt reads as much, in words of 4 bytes
    const auto cookie = xcb_get_property(xcb, 0, screenOf(xcb).root, internAtom(xcb, "AT_SPI_BUS"),
                                         XCB_ATOM_STRING, 0, kLength);
    const Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(xcb, cookie, nullptr));
    if (!reply)
        return {};
    return {static_cast<const char*>(xcb_get_property_value(reply.get())),
            static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
}

} // namespace tessarel::qt
