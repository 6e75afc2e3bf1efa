#pragma once

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>
#include <string_view>

namespace tessarel::bench {

struct FreeDeleter {
    void operator()(void* memory) const { std::free(memory); }
};

/// A reply or an event of the X server, which frees itself.
template <typename T>
using Received = std::unique_ptr<T, FreeDeleter>;

/// A connection to the X server that `DISPLAY` names. Every part of the bench that sends or watches has its
/// own, so that none waits behind another.
class Connection {
public:
    /// Throws std::runtime_error when there is no server.
    Connection();
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    [[nodiscard]] xcb_connection_t* get() const { return m_connection; }
    [[nodiscard]] xcb_window_t root() const { return m_screen->root; }
    [[nodiscard]] const xcb_screen_t& screen() const { return *m_screen; }

    [[nodiscard]] xcb_atom_t atom(std::string_view name) const;
    void flush() const { xcb_flush(m_connection); }
    /// Returns once the server has handled everything sent so far.
    void roundTrip() const;

private:
    xcb_connection_t* m_connection;
    const xcb_screen_t* m_screen = nullptr;
};

} // namespace tessarel::bench
