// SPDX-License-Identifier: MIT

#pragma once

#include <QDBusConnection>
#include <QString>

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <sys/types.h>
#include <thread>
#include <vector>

namespace tessarel::qt {

/// Connects to the session bus in a thread of its own, because Qt and the D-Bus library block until the bus
/// has accepted the connection: for ever if the bus hangs just then.
///
/// While the thread runs, everything else that uses Qt's D-Bus library waits for it.
class BusConnecting {
public:
    struct Result {
        /// Whether Qt's own connection, that of its parts, is connected.
        bool isQtConnected = false;
        /// A connection apart from Qt's own; empty if the bus does not accept it.
        std::optional<QDBusConnection> connection;
    };

    /// Starts to connect to `address`, Qt's own connection first, if that is still to be made. Qt takes its
    /// address from the environment, which must not change meanwhile. `peer` is the `peerName` of a socket
    /// that is connected to the bus, and `name` that of the connection apart.
    BusConnecting(std::string peer, std::string address, QString name);
    BusConnecting(const BusConnecting&) = delete;
    BusConnecting& operator=(const BusConnecting&) = delete;
    /// Breaks off.
    ~BusConnecting();

    /// Returns a descriptor that is readable once the thread has finished.
    [[nodiscard]] int fileDescriptor() const;
    /// Waits for up to `patience` until the thread has finished, and returns whether it has.
    [[nodiscard]] bool wait(std::chrono::milliseconds patience) const;
    /// Closes what is not connected yet, and waits for the thread, for at most a second. If Qt's own
    /// connection is not there yet, Qt does without the bus until the program ends.
    void breakOff();
    /// Returns what has come of it. Requires that the thread has finished.
    [[nodiscard]] Result result();

private:
    struct Work;

    [[nodiscard]] std::vector<int> sockets() const;

    std::string m_peer;
    std::vector<ino_t> m_olderSockets;
    std::shared_ptr<Work> m_work; // shared with the thread, which may outlive this object
    std::thread m_thread;
};

} // namespace tessarel::qt
