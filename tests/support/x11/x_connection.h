// SPDX-License-Identifier: MIT

#pragma once

#include <xcb/xcb.h>

#include <cstdlib>
#include <map>
#include <memory>
#include <string>
#include <string_view>

namespace tessarel::x11test {

/// Frees a reply or an event of xcb.
template <typename T>
struct FreeDeleter {
    void operator()(T* pointer) const { std::free(pointer); }
};
template <typename T>
using Owned = std::unique_ptr<T, FreeDeleter<T>>;

template <typename T>
[[nodiscard]] Owned<T> own(T* pointer) {
    return Owned<T>(pointer);
}

/// A connection of the test to an X server.
class XConnection {
public:
    /// Connects to `display`, or to $DISPLAY if it is empty. Throws std::runtime_error if the server cannot
    /// be reached.
    explicit XConnection(const std::string& display = {});
    XConnection(const XConnection&) = delete;
    XConnection& operator=(const XConnection&) = delete;
    ~XConnection();

    [[nodiscard]] xcb_connection_t* get() const { return m_connection; }
    [[nodiscard]] const xcb_screen_t& screen() const { return *m_screen; }
    [[nodiscard]] xcb_window_t root() const { return m_screen->root; }

    [[nodiscard]] xcb_atom_t atom(std::string_view name) const;
    [[nodiscard]] std::string atomName(xcb_atom_t atom) const;

    void flush() const { xcb_flush(m_connection); }

    /// Waits until the server has processed all requests sent so far and has written the resulting events to
    /// all clients.
    void roundTrip() const;

private:
    xcb_connection_t* m_connection = nullptr;
    xcb_screen_t* m_screen = nullptr;
    mutable std::map<std::string, xcb_atom_t, std::less<>> m_atoms; ///< those asked for so far
};

} // namespace tessarel::x11test
