// SPDX-License-Identifier: MIT

#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <poll.h>
#include <stdexcept>
#include <string>
#include <string_view>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace tessarel {

/// A message bus that authenticates every client, lets the first ones enter (replies to Hello), and replies
/// to nothing else. Served by a thread of its own.
class HangingBus {
public:
    /// What other clients meet once the first ones have entered.
    enum class Others : std::uint8_t {
        Authenticate,
        WaitInConnect, ///< the backlog is full
    };

    /// Listens at the socket `path`. `entering` is the number of clients that may enter.
    HangingBus(const std::string& path, int entering, Others others = Others::Authenticate)
        : m_entering(entering), m_others(others) {
        path.copy(&m_address.sun_path[0], sizeof m_address.sun_path - 1);
        if (::bind(m_listener, address(), sizeof m_address) != 0 || ::listen(m_listener, SOMAXCONN) != 0)
            throw std::runtime_error("cannot listen at " + path);
        m_thread = std::thread([this] { serve(); });
    }
    HangingBus(const HangingBus&) = delete;
    HangingBus& operator=(const HangingBus&) = delete;
    ~HangingBus() {
        ::eventfd_write(m_end, 1);
        m_thread.join();
        ::close(m_listener);
        ::close(m_end);
    }

private:
    struct Client {
        int socket;
        std::string received = {};
        bool isAuthenticated = false;
        bool hasAsked = false; // to enter
    };

    void serve() {
        std::vector<Client> clients;
        for (;;) {
            std::vector<pollfd> watched{{m_end, POLLIN, 0}, {m_isAccepting ? m_listener : -1, POLLIN, 0}};
            for (const Client& client : clients)
                watched.push_back({client.socket, POLLIN, 0}); // one that has gone is ignored
            ::poll(watched.data(), watched.size(), -1);
            for (std::size_t i = 0; i < clients.size(); ++i)
                if (watched[i + 2].revents != 0)
                    read(clients[i]);
            if (watched[1].revents != 0)
                clients.push_back({::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC)});
            if (watched[0].revents != 0)
                break;
        }
        for (const Client& client : clients)
            ::close(client.socket);
        for (const int socket : m_waiting)
            ::close(socket);
    }

    void read(Client& client) {
        std::array<char, 4096> bytes{};
        const ssize_t count = ::recv(client.socket, bytes.data(), bytes.size(), 0);
        if (count <= 0) {
            ::close(client.socket);
            client.socket = -1;
            return;
        }
        client.received.append(bytes.data(), static_cast<std::size_t>(count));
        while (!client.isAuthenticated && authenticate(client))
            continue;
        constexpr std::size_t kSerial = 8; // where a message has its number
        std::uint32_t serial = 0;
        if (!client.isAuthenticated || client.hasAsked || client.received.size() < kSerial + sizeof serial)
            return;
        client.hasAsked = true;
        std::memcpy(&serial, &client.received[kSerial], sizeof serial);
        if (m_entering-- <= 0)
            return;
        if (m_entering == 0 && m_others == Others::WaitInConnect)
            fillBacklog();
        send(client, welcome(serial));
    }

    /// Accepts no further client, and lets the next one wait in connect().
    void fillBacklog() {
        ::listen(m_listener, 0);
        m_isAccepting = false;
        int result = 0;
        while (result == 0) {
            m_waiting.push_back(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
            result = ::connect(m_waiting.back(), address(), sizeof m_address);
        }
    }

    [[nodiscard]] const sockaddr* address() const { return reinterpret_cast<const sockaddr*>(&m_address); }

    /// Handles one line. Returns false if there is none yet.
    static bool authenticate(Client& client) {
        const std::size_t end = client.received.find("\r\n");
        if (end == std::string::npos)
            return false;
        const std::string line = client.received.substr(0, end);
        client.received.erase(0, end + 2);
        if (line == "BEGIN")
            client.isAuthenticated = true;
        else
            send(client, line.find("AUTH EXTERNAL") == std::string::npos
                             ? "ERROR\r\n"
                             : "OK 0123456789abcdef0123456789abcdef\r\n");
        return true;
    }

    /// Returns the reply to Hello, with the client's name on the bus.
    static std::string welcome(std::uint32_t serial) {
        using namespace std::string_view_literals;
        std::string message("l\2\1\1\11\0\0\0\1\0\0\0\75\0\0\0"sv); // a body of 9 bytes, fields of 61
        message += "\5\1u\0"sv;                                     // in reply to
        message.append(reinterpret_cast<const char*>(&serial), sizeof serial);
        message += "\6\1s\0\4\0\0\0:1.1\0\0\0\0"sv;                  // destination
        message += "\10\1g\0\1s\0\0"sv;                              // signature
        message += "\7\1s\0\24\0\0\0org.freedesktop.DBus\0\0\0\0"sv; // sender
        message += "\4\0\0\0:1.1\0"sv;
        return message;
    }

    static void send(const Client& client, std::string_view bytes) {
        ::send(client.socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    }

    int m_entering;
    Others m_others;
    bool m_isAccepting = true;
    std::vector<int> m_waiting; // sockets that fill the backlog
    sockaddr_un m_address{.sun_family = AF_UNIX, .sun_path = {}};
    int m_listener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    int m_end = ::eventfd(0, EFD_CLOEXEC);
    std::thread m_thread;
};

} // namespace tessarel
