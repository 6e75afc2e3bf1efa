// SPDX-License-Identifier: MIT

#include "platform/qt_xdg/bus_connecting.h"

#include "platform/qt_xdg/bus_probe.h"

#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace tessarel::qt {

namespace {

/// How long to break off. Sockets of the bus that cannot be recognised are not shut down.
constexpr std::chrono::seconds kBreakingOff{1};

/// Returns the descriptors of this process that are open, of the lowest thousand.
std::vector<int> openDescriptors() {
    constexpr rlim_t kMost = 1024;
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0)
        return {};
    std::vector<pollfd> all(std::min(limit.rlim_cur, kMost));
    for (std::size_t i = 0; i < all.size(); ++i)
        all[i].fd = static_cast<int>(i);
    ::poll(all.data(), all.size(), 0);
    std::vector<int> open;
    for (const pollfd& entry : all) {
        if ((entry.revents & POLLNVAL) == 0)
            open.push_back(entry.fd);
    }
    return open;
}

ino_t inode(int socket) {
    struct stat status {};
    return ::fstat(socket, &status) == 0 ? status.st_ino : 0;
}

/// Lets a signal interrupt connect() for as long as this object lives. To shut a socket down does not: it has
/// no effect before a bus with a full backlog has taken the connection.
class ConnectInterruption {
public:
    ConnectInterruption() {
        struct sigaction action {}; // without SA_RESTART
        action.sa_handler = [](int) {};
        ::sigaction(kSignal, &action, &m_before);
    }
    ConnectInterruption(const ConnectInterruption&) = delete;
    ConnectInterruption& operator=(const ConnectInterruption&) = delete;
    ~ConnectInterruption() { ::sigaction(kSignal, &m_before, nullptr); }

    /// Interrupts each thread of this process that is in connect(). It is not known which: Qt connects in
    /// another thread of its own.
    static void send() {
        std::error_code error;
        std::filesystem::directory_iterator thread("/proc/self/task", error);
        for (; !error && thread != std::filesystem::directory_iterator(); thread.increment(error)) {
            long call = -1;
            if (std::ifstream(thread->path() / "syscall") >> call && call == SYS_connect)
                ::tgkill(::getpid(), std::stoi(thread->path().filename()), kSignal);
        }
    }

private:
    /// Ignored by default, and used by nothing else: it is for sockets with out-of-band data.
    static constexpr int kSignal = SIGURG;

    struct sigaction m_before {};
};

} // namespace

/// What the thread does, and what has come of it.
struct BusConnecting::Work {
    Work(std::string busAddress, QString connectionName)
        : address(std::move(busAddress)), name(std::move(connectionName)) {}
    Work(const Work&) = delete;
    Work& operator=(const Work&) = delete;
    ~Work() { ::close(finished); }

    void connect();

    const std::string address;
    const QString name;
    std::atomic<bool> isBrokenOff = false;
    const int finished = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    Result result;
};

void BusConnecting::Work::connect() {
    result.isQtConnected = QDBusConnection::sessionBus().isConnected();
    if (!isBrokenOff) {
        result.connection = QDBusConnection::connectToBus(QString::fromStdString(address), name);
        if (!result.connection->isConnected()) {
            result.connection.reset();
            QDBusConnection::disconnectFromBus(name);
        }
    }
    ::eventfd_write(finished, 1);
}

BusConnecting::BusConnecting(std::string peer, std::string address, QString name)
    : m_peer(std::move(peer)), m_work(std::make_shared<Work>(std::move(address), std::move(name))) {
    for (const int socket : sockets())
        m_olderSockets.push_back(inode(socket));
    m_thread = std::thread([work = m_work] { work->connect(); });
}

BusConnecting::~BusConnecting() {
    breakOff();
    if (m_thread.joinable())
        m_thread.detach();
}

int BusConnecting::fileDescriptor() const {
    return m_work->finished;
}

/// Returns the sockets of this process that are connected to the bus, without those that were before.
std::vector<int> BusConnecting::sockets() const {
    std::vector<int> found = openDescriptors();
    std::erase_if(found, [this](int descriptor) {
        return m_peer.empty() || peerName(descriptor) != m_peer ||
               std::ranges::find(m_olderSockets, inode(descriptor)) != m_olderSockets.end();
    });
    return found;
}

bool BusConnecting::wait(std::chrono::milliseconds patience) const {
    pollfd finished{.fd = m_work->finished, .events = POLLIN, .revents = 0};
    return ::poll(&finished, 1, static_cast<int>(patience.count())) > 0;
}

/// The D-Bus library takes a socket that is shut down, or a connect() that is interrupted, for a bus that has
/// gone. It may be just about to connect another socket, so this is repeated.
void BusConnecting::breakOff() {
    constexpr std::chrono::milliseconds kInterval{10};
    const auto end = std::chrono::steady_clock::now() + kBreakingOff;
    const ConnectInterruption interruption;
    m_work->isBrokenOff = true;
    while (!wait(std::chrono::milliseconds::zero()) && std::chrono::steady_clock::now() < end) {
        for (const int socket : sockets())
            ::shutdown(socket, SHUT_RDWR);
        ConnectInterruption::send();
        (void)wait(kInterval);
    }
}

BusConnecting::Result BusConnecting::result() {
    if (m_thread.joinable())
        m_thread.join();
    return m_work->result;
}

} // namespace tessarel::qt
