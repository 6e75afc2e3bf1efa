// SPDX-License-Identifier: MIT

#pragma once

#include <xcb/xproto.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

namespace tessarel::qt {

/// Returns Qt's own connection to the X server, or null when Qt does not run on X11.
///
/// Use it for requests about Qt's windows. Never wait for an event on this connection: Qt reads it in another
/// thread.
[[nodiscard]] xcb_connection_t* qtConnection();

/// Releases memory with std::free(), because xcb allocates replies with malloc().
struct FreeDeleter {
    void operator()(void* reply) const { std::free(reply); }
};

/// Owns a reply or an error of xcb; null when there is none.
template <class T>
using Reply = std::unique_ptr<T, FreeDeleter>;

/// Returns the index of the X screen that $DISPLAY names, or 0 when it is not valid.
[[nodiscard]] int screenNumber();
/// Returns the screen with that index, the one that Qt's windows are on.
[[nodiscard]] const xcb_screen_t& screenOf(xcb_connection_t* xcb);
/// Interns an atom. Takes a round trip. Returns XCB_ATOM_NONE when the connection is lost.
[[nodiscard]] xcb_atom_t internAtom(xcb_connection_t* xcb, std::string_view name);
/// Returns the window that owns `selection`, or XCB_WINDOW_NONE when it has no owner. Takes a round trip.
[[nodiscard]] xcb_window_t ownerOf(xcb_connection_t* xcb, xcb_atom_t selection);
/// Returns the address of the accessibility bus that the screen announces, as Qt reads it. Empty if there is
/// none, or when Qt does not run on X11. Takes two round trips.
[[nodiscard]] std::string announcedAccessibilityBus();

} // namespace tessarel::qt
