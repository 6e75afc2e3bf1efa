// SPDX-License-Identifier: MIT

#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

namespace tessarel::qt {

/// Returns the name that a bus has given to its socket, for a socket of this process that is connected to it.
/// It differs from the address where that leads through a link. It has a leading null character if it is not
/// in the file system, and is empty if there is none.
[[nodiscard]] std::string peerName(int socket);

/// Finds out whether the message bus at an address replies, without blocking.
///
/// The D-Bus library blocks until a bus has accepted the authentication and has replied to the first call.
/// The probe does both on a socket of its own first, so that the library connects only to a bus that replies.
class BusProbe {
public:
    enum class State : std::uint8_t {
        Waiting,
        /// The bus has replied to Hello.
        Replied,
        /// There is no bus at the address, or it rejects this program.
        Failed,
        /// The bus has a full backlog: a connect() that blocks would wait.
        Full,
    };

    /// Returns whether `address` has an entry that can be probed: a socket of this machine.
    [[nodiscard]] static bool supports(std::string_view address);

    /// Connects to the first reachable entry of `address`, a D-Bus server address, and starts the
    /// authentication. Fails if no entry can be probed.
    explicit BusProbe(std::string_view address);
    BusProbe(const BusProbe&) = delete;
    BusProbe& operator=(const BusProbe&) = delete;
    ~BusProbe();

    /// Reads what has arrived and returns the new state. Call it when the descriptor is readable.
    State proceed();
    /// Waits for up to `patience` until the state is no longer `Waiting`, and returns the state.
    State wait(std::chrono::milliseconds patience);

    /// Returns the socket; -1 if nothing could be connected.
    [[nodiscard]] int fileDescriptor() const { return m_socket; }

private:
    void send(std::string_view bytes);
    void fail();
    void decode();

    State m_state = State::Waiting;
    int m_socket = -1;
    bool m_isAuthenticated = false;
    std::string m_received;
};

} // namespace tessarel::qt
