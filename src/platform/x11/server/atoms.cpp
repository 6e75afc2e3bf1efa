// SPDX-License-Identifier: MIT

#include "platform/x11/server/atoms.h"

#include "platform/x11/server/reply.h"

#include <cstdint>

namespace tessarel::x11 {

namespace {

constexpr auto kCount = static_cast<std::size_t>(Atom::kCount);

// In the order of `Atom`, because `Atoms` indexes by the enumerator's value.
constexpr std::array<std::string_view, kCount> kNames = {
    "_GTK_APPLICATION_ID",
    "_GTK_FRAME_EXTENTS",
    "_KDE_NET_WM_DESKTOP_FILE",
    "_NET_ACTIVE_WINDOW",
    "_NET_CLIENT_LIST",
    "_NET_CLIENT_LIST_STACKING",
    "_NET_CURRENT_DESKTOP",
    "_NET_FRAME_EXTENTS",
    "_NET_MOVERESIZE_WINDOW",
    "_NET_SUPPORTED",
    "_NET_SUPPORTING_WM_CHECK",
    "_NET_WM_DESKTOP",
    "_NET_WM_NAME",
    "_NET_WM_PID",
    "_NET_WM_STATE",
    "_NET_WM_STATE_FULLSCREEN",
    "_NET_WM_STATE_HIDDEN",
    "_NET_WM_STATE_MAXIMIZED_HORZ",
    "_NET_WM_STATE_MAXIMIZED_VERT",
    "_NET_WM_STATE_SHADED",
    "_NET_WM_STRUT",
    "_NET_WM_STRUT_PARTIAL",
    "_NET_WM_WINDOW_OPACITY",
    "_NET_WM_WINDOW_TYPE",
    "_NET_WM_WINDOW_TYPE_COMBO",
    "_NET_WM_WINDOW_TYPE_DESKTOP",
    "_NET_WM_WINDOW_TYPE_DIALOG",
    "_NET_WM_WINDOW_TYPE_DND",
    "_NET_WM_WINDOW_TYPE_DOCK",
    "_NET_WM_WINDOW_TYPE_DROPDOWN_MENU",
    "_NET_WM_WINDOW_TYPE_MENU",
    "_NET_WM_WINDOW_TYPE_NORMAL",
    "_NET_WM_WINDOW_TYPE_NOTIFICATION",
    "_NET_WM_WINDOW_TYPE_POPUP_MENU",
    "_NET_WM_WINDOW_TYPE_SPLASH",
    "_NET_WM_WINDOW_TYPE_TOOLBAR",
    "_NET_WM_WINDOW_TYPE_TOOLTIP",
    "_NET_WM_WINDOW_TYPE_UTILITY",
    "_NET_WORKAREA",
    "_TESSAREL_COMMAND",
    "UTF8_STRING",
    "WM_STATE",
};
static_assert(!kNames.back().empty(), "every atom has a name");

} // namespace

std::string_view nameOf(Atom atom) {
    return kNames[static_cast<std::size_t>(atom)];
}

Atoms::Atoms(xcb_connection_t* xcb) {
    // All requests go out before the first reply is read, which makes this one round trip instead of one
    // each.
    std::array<xcb_intern_atom_cookie_t, kCount> cookies{};
    for (std::size_t i = 0; i < kCount; ++i)
        cookies[i] = xcb_intern_atom(xcb, 0, static_cast<std::uint16_t>(kNames[i].size()), kNames[i].data());
    for (std::size_t i = 0; i < kCount; ++i) {
        const Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(xcb, cookies[i], nullptr));
        if (reply)
            m_atoms[i] = reply->atom;
    }
}

} // namespace tessarel::x11
