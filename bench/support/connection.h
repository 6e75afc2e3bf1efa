#pragma once

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>
#include <string_view>

namespace tessarel::bench {

struct FreeDeleter {
    void operator()(void* memory) const { std::free(memory); }
};

/// An owned reply or event of the X server, freed on destruction.
template <typename T>
using Received = std::unique_ptr<T, FreeDeleter>;

/// A connection to the X server of `DISPLAY`. Each part of a benchmark that sends or watches has its own
/// connection, so that none queues behind another.
class Connection {
public:
    /// Throws std::runtime_error if there is no server.
    Connection();
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    [[nodiscard]] xcb_connection_t* get() const { return m_connection; }
    [[nodiscard]] xcb_window_t root() const { return m_screen->root; }
    [[nodiscard]] const xcb_screen_t& screen() const { return *m_screen; }

    [[nodiscard]] xcb_atom_t atom(std::string_view name) const;
    void flush() const { xcb_flush(m_connection); }
    /// Returns once the server has processed all requests sent so far.
    void roundTrip() const;

private:
    xcb_connection_t* m_connection;
    const xcb_screen_t* m_screen = nullptr;
};

} // namespace tessarel::bench
