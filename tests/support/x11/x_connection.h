#pragma once

#include <xcb/xcb.h>

#include <cstdlib>
#include <map>
#include <memory>
#include <string>
#include <string_view>

namespace tessarel::x11test {

/// A reply or an event of the X server, which frees itself.
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

/// The test's own connection to an X server.
class XConnection {
public:
    /// Throws std::runtime_error when the server cannot be reached.
    explicit XConnection(const std::string& display);
    XConnection(const XConnection&) = delete;
    XConnection& operator=(const XConnection&) = delete;
    ~XConnection();

    [[nodiscard]] xcb_connection_t* get() const { return m_connection; }
    [[nodiscard]] const xcb_screen_t& screen() const { return *m_screen; }
    [[nodiscard]] xcb_window_t root() const { return m_screen->root; }

    [[nodiscard]] xcb_atom_t atom(std::string_view name);
    [[nodiscard]] std::string atomName(xcb_atom_t atom);

    /// Waits until the server has handled every request made so far, and has written the events that came of
    /// them to every client.
    void roundTrip();

private:
    xcb_connection_t* m_connection = nullptr;
    xcb_screen_t* m_screen = nullptr;
    std::map<std::string, xcb_atom_t, std::less<>> m_atoms;
};

} // namespace tessarel::x11test
