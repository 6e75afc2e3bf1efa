#pragma once

#include <xcb/xproto.h>

#include <cstdlib>
#include <memory>
#include <string_view>

namespace tessarel::qt {

/// Qt's own connection to the X server, for requests about windows of Qt's: it never waits for events. Null
/// when Qt does not run on X11.
[[nodiscard]] xcb_connection_t* qtConnection();

struct FreeDeleter {
    void operator()(void* reply) const { std::free(reply); }
};

/// An answer of the X server.
template <class T>
using Reply = std::unique_ptr<T, FreeDeleter>;

/// Number of the screen that $DISPLAY names.
[[nodiscard]] int screenNumber();
/// XCB_ATOM_NONE when the server does not answer.
[[nodiscard]] xcb_atom_t internAtom(xcb_connection_t* xcb, std::string_view name);
/// XCB_WINDOW_NONE when nobody owns the selection.
[[nodiscard]] xcb_window_t ownerOf(xcb_connection_t* xcb, xcb_atom_t selection);

} // namespace tessarel::qt
