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
    /// Throws std::runtime_error if the server cannot be reached.
    explicit XConnection(const std::string& display);
    XConnection(const XConnection&) = delete;
    XConnection& operator=(const XConnection&) = delete;
    ~XConnection();

    [[nodiscard]] xcb_connection_t* get() const { return m_connection; }
    [[nodiscard]] const xcb_screen_t& screen() const { return *m_screen; }
    [[nodiscard]] xcb_window_t root() const { return m_screen->root; }

    [[nodiscard]] xcb_atom_t atom(std::string_view name);
    [[nodiscard]] std::string atomName(xcb_atom_t atom);

    /// Waits until the server has processed all requests sent so far and has written the resulting events to
    /// all clients.
    void roundTrip();

private:
    xcb_connection_t* m_connection = nullptr;
    xcb_screen_t* m_screen = nullptr;
    std::map<std::string, xcb_atom_t, std::less<>> m_atoms;
};

} // namespace tessarel::x11test
