// SPDX-License-Identifier: MIT

#include "support/x11/child_process.h"
#include "support/x11/x_server.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <list>
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

namespace tessarel::x11test {
namespace {

/// Returns a socket that `call`, which is bind() or connect(), has given the address `name`.
template <class Call>
FileDescriptor socketAt(const std::string& name, Call call) {
    FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::ranges::copy(name, std::begin(address.sun_path));
    const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + name.size());
    if (call(socket.get(), reinterpret_cast<const sockaddr*>(&address), length) != 0)
        socket.close();
    return socket;
}

/// A display that dies for all its clients once the second of them, which is Qt, has sent some bytes.
class DyingDisplay {
public:
    DyingDisplay(const XServer& server, std::size_t bytesOfQt)
        : m_server("/tmp/.X11-unix/X" + server.display().substr(1)), m_left(bytesOfQt) {
        constexpr int kFirst = 10'000; // beyond the displays of real servers
        constexpr int kLast = 60'000;
        for (m_number = kFirst + ::getpid() % kFirst; m_listener.get() < 0 && m_number < kLast;) {
            using namespace std::string_literals;
            m_listener = socketAt("\0/tmp/.X11-unix/X"s + std::to_string(++m_number), ::bind);
        }
        if (m_listener.get() < 0 || ::listen(m_listener.get(), 2) != 0)
            throw std::runtime_error("no free display");
        m_thread = std::thread([this] { run(); });
    }
    DyingDisplay(const DyingDisplay&) = delete;
    DyingDisplay& operator=(const DyingDisplay&) = delete;
    ~DyingDisplay() {
        (void)::eventfd_write(m_stop.get(), 1);
        m_thread.join();
    }

    [[nodiscard]] std::string name() const { return ":" + std::to_string(m_number); }

private:
    struct Link {
        FileDescriptor from;
        int to;
        bool isOfQt = false;
    };

    void run() {
        while (forward()) {
        }
        m_links.clear();
        m_listener.close();
    }

    /// Forwards what has arrived. Returns false at the end of the display.
    bool forward() {
        std::vector<pollfd> polled{{m_stop.get(), POLLIN, 0}, {m_listener.get(), POLLIN, 0}};
        for (const Link& link : m_links)
            polled.push_back({link.from.get(), POLLIN, 0});
        ::poll(polled.data(), polled.size(), -1);
        if (polled[0].revents != 0)
            return false;
        std::size_t next = 2;
        for (Link& link : m_links)
            if (polled[next++].revents != 0 && !forward(link))
                return false;
        return polled[1].revents == 0 || accept();
    }

    bool forward(const Link& link) {
        std::array<char, 4096> bytes{};
        const std::size_t most = link.isOfQt ? std::min(m_left, bytes.size()) : bytes.size();
        const ssize_t count = ::recv(link.from.get(), bytes.data(), most, 0);
        if (count <= 0)
            return false;
        ::send(link.to, bytes.data(), static_cast<std::size_t>(count), MSG_NOSIGNAL);
        if (link.isOfQt)
            m_left -= static_cast<std::size_t>(count);
        return !link.isOfQt || m_left > 0;
    }

    bool accept() {
        const bool isOfQt = !m_links.empty();
        FileDescriptor client(::accept4(m_listener.get(), nullptr, nullptr, SOCK_CLOEXEC));
        FileDescriptor server = socketAt(m_server, ::connect);
        const int to = server.get();
        const int back = client.get();
        m_links.push_back({std::move(client), to, isOfQt});
        m_links.push_back({std::move(server), back});
        return !isOfQt || m_left > 0;
    }

    std::string m_server;
    std::size_t m_left;
    int m_number = 0;
    FileDescriptor m_listener;
    FileDescriptor m_stop{::eventfd(0, EFD_CLOEXEC)};
    std::list<Link> m_links;
    std::thread m_thread;
};

TEST(DisplayLossTest, AnXServerThatDiesWhileQtStartsEndsTheProgramWithOneLine) {
    const XServer server;
    constexpr std::size_t kBytesOfQtsStart = 4'500;
    constexpr std::size_t kStep = 100;
    for (std::size_t bytes = 0; bytes <= kBytesOfQtsStart; bytes += kStep) {
        const DyingDisplay display(server, bytes);
        Environment environment = server.environment();
        environment["DBUS_SESSION_BUS_ADDRESS"] = "disabled:";
        environment["DISPLAY"] = display.name();

        ChildProcess program({TESSAREL_PROGRAM}, environment);

        EXPECT_EQ(program.waitForExit(), 1) << bytes;
        EXPECT_EQ(program.errors(), "tessarel: lost the connection to the X display\n") << bytes;
    }
}

} // namespace
} // namespace tessarel::x11test
