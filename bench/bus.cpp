// SPDX-License-Identifier: MIT

// Measures the program on session buses that fail: how soon its keys work after the start, how long a press
// and the settings window take, and whether SIGTERM ends it.
//
//   bus DIRECTORY [PRESSES]

#include "support/clock.h"
#include "support/keyboard.h"
#include "support/pager.h"
#include "support/resident.h"
#include "support/scratch_folder.h"
#include "support/statistics.h"
#include "support/table.h"
#include "support/target.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>

#include <array>
#include <csignal>
#include <cstdio>
#include <exception>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <vector>

namespace tessarel::bench {

namespace {

using namespace std::chrono_literals;

constexpr int kDefaultPresses = 20;
constexpr auto kTimeToSettle = 1s;
constexpr Milliseconds kPatience = 2s;
constexpr auto kPatienceForTheEnd = 20s;
/// How often a new system tray is announced; the program looks for one each time.
constexpr int kAnnouncements = 60;

enum class Fault {
    None,          ///< a bus that replies
    NoBus,         ///< nothing listens at the address
    NeverReplies,  ///< connections are accepted, and nothing is ever sent
    Dies,          ///< is killed after the start
    Stops,         ///< is stopped after the start
    SilentWatcher, ///< the service that knows the panels never replies
};

struct Row {
    const char* name;
    Fault fault;
};

constexpr std::array kRows = {Row{"a bus that replies", Fault::None},
                              Row{"no bus", Fault::NoBus},
                              Row{"accepts and never replies", Fault::NeverReplies},
                              Row{"dies after the start", Fault::Dies},
                              Row{"is stopped after the start", Fault::Stops},
                              Row{"silent StatusNotifierWatcher", Fault::SilentWatcher}};

/// A service that never replies: nothing processes the events of its thread.
class SilentWatcher : public QDBusVirtualObject {
public:
    explicit SilentWatcher(const std::string& address)
        : m_bus(QDBusConnection::connectToBus(QString::fromStdString(address), kConnection)) {
        if (!m_bus.registerVirtualObject(QStringLiteral("/StatusNotifierWatcher"), this) ||
            !m_bus.registerService(QStringLiteral("org.kde.StatusNotifierWatcher")))
            throw std::runtime_error("cannot become the watcher of status items");
    }
    SilentWatcher(const SilentWatcher&) = delete;
    SilentWatcher& operator=(const SilentWatcher&) = delete;
    ~SilentWatcher() override { QDBusConnection::disconnectFromBus(kConnection); }

    [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage& /*message*/, const QDBusConnection& /*connection*/) override {
        return true;
    }

private:
    static constexpr const char* kConnection = "silent";
    QDBusConnection m_bus;
};

/// A session bus with a fault.
class FaultyBus {
public:
    explicit FaultyBus(Fault fault) : m_fault(fault), m_path(m_folder.path() / "bus") {
        if (fault == Fault::NeverReplies)
            listen();
        else if (fault != Fault::NoBus)
            start();
        if (fault == Fault::SilentWatcher)
            m_watcher = std::make_unique<SilentWatcher>(address());
    }

    [[nodiscard]] std::string address() const { return "unix:path=" + m_path; }

    /// Brings about what happens after the start.
    void fail() const {
        if (m_fault == Fault::Dies)
            m_daemon->kill();
        else if (m_fault == Fault::Stops)
            m_daemon->signal(SIGSTOP);
    }

private:
    void start() {
        m_daemon = std::make_unique<ChildProcess>(
            std::vector<std::string>{"dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address",
                                     "--address=" + address()});
        (void)m_daemon->readLine();
    }

    /// The kernel accepts connections for a listening socket.
    void listen() {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        m_path.copy(&address.sun_path[0], sizeof address.sun_path - 1);
        m_socket = x11test::FileDescriptor(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
        if (::bind(m_socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
            ::listen(m_socket.get(), SOMAXCONN) != 0)
            throw std::runtime_error("cannot listen at " + m_path);
    }

    Fault m_fault;
    ScratchFolder m_folder;
    std::string m_path;
    x11test::FileDescriptor m_socket;
    std::unique_ptr<ChildProcess> m_daemon;
    std::unique_ptr<SilentWatcher> m_watcher;
};

/// Sends what a new system tray sends when it starts.
void announceTray(const Connection& connection) {
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = connection.root();
    event.type = connection.atom("MANAGER");
    event.data.data32[1] = connection.atom("_NET_SYSTEM_TRAY_S0");
    xcb_send_event(connection.get(), 0, connection.root(), XCB_EVENT_MASK_STRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&event));
    connection.flush();
}

/// The presses of two keys in turns.
struct Presses {
    std::vector<double> milliseconds;
    int lost = 0;
};

Presses pressKeys(Target& target, Keyboard& keyboard, int count) {
    constexpr std::array kKeys = {key::kLeft, key::kDown};
    Presses presses;
    std::array<ClientSize, 2> sizes{};
    for (int i = 0; i < count + 2; ++i) {
        const auto place = static_cast<std::size_t>(i % 2);
        const bool isWarmUp = i < 2; // shows which sizes the two places have
        keyboard.holdModifiers();
        target.discardEvents();
        const auto pressed = keyboard.press(std::array{kKeys.at(place)});
        const auto placed =
            isWarmUp ? target.untilQuiet(kPatience).last : target.untilOfSize(sizes.at(place), kPatience);
        keyboard.release(kKeys.at(place));
        if (isWarmUp)
            sizes.at(place) = target.clientSize();
        else if (placed)
            presses.milliseconds.push_back(Milliseconds(*placed - pressed).count());
        else
            ++presses.lost;
    }
    return presses;
}

std::string sinceThen(Clock::time_point start) {
    return number(Milliseconds(Clock::now() - start).count(), 1);
}

/// Opens the settings window by a second start. Returns the milliseconds until it is there.
std::string openSettings(const Resident& tessarel) {
    const Pager pager;
    std::vector<std::string> command{"env"};
    command.insert(command.end(), tessarel.environment.begin(), tessarel.environment.end());
    command.push_back(tessarel.path);
    const auto start = Clock::now();
    const ChildProcess second(command);
    try {
        (void)pager.awaitWindowOf("tessarel");
    } catch (const std::runtime_error&) {
        return "over 10,000";
    }
    return sinceThen(start);
}

std::string end(ChildProcess& program) {
    const auto start = Clock::now();
    program.signal(SIGTERM);
    return program.waitForExit(x11test::Deadline(kPatienceForTheEnd)) ? sinceThen(start) : "over 20,000";
}

void measure(const std::string& directory, const Row& row, int count, Table& table) {
    const Connection connection;
    const FaultyBus bus(row.fault);
    Resident tessarel = residents(directory).back();
    tessarel.environment = {"DBUS_SESSION_BUS_ADDRESS=" + bus.address()};
    Target target;
    Keyboard keyboard;
    const auto start = Clock::now();
    const auto program = startAndAwait(tessarel, connection);
    const std::string started = sinceThen(start);
    std::this_thread::sleep_for(kTimeToSettle);
    bus.fail();
    if (row.fault == Fault::SilentWatcher) {
        for (int i = 0; i < kAnnouncements; ++i)
            announceTray(connection);
    }
    const Presses presses = pressKeys(target, keyboard, count);
    const std::string settings = openSettings(tessarel);
    table.add({row.name, started, number(median(presses.milliseconds), 1),
               number(percentile(presses.milliseconds, 95), 1), std::to_string(presses.lost), settings,
               end(*program)});
}

void measureAll(const std::string& directory, int count) {
    Table table({"session bus", "exec to keys ms", "key p50 ms", "key p95 ms", "lost", "settings window ms",
                 "SIGTERM to exit ms"});
    for (const Row& row : kRows)
        measure(directory, row, count, table);
    table.print("The program on session buses that fail, " + std::to_string(count) + " presses each");
}

} // namespace

} // namespace tessarel::bench

int main(int count, char** arguments) {
    if (count < 2) {
        std::fprintf(stderr, "usage: bus DIRECTORY [PRESSES]\n");
        return 2;
    }
    try {
        tessarel::bench::measureAll(arguments[1],
                                    count > 2 ? std::stoi(arguments[2]) : tessarel::bench::kDefaultPresses);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "bus: %s\n", error.what());
        return 1;
    }
}
