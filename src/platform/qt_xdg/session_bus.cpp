// SPDX-License-Identifier: MIT

#include "platform/qt_xdg/session_bus.h"

#include <QAccessible>
#include <QCoreApplication>
#include <QObject>
#include <QString>
#include <QThread>
#include <QtGlobal>

#include <algorithm>
#include <utility>

namespace tessarel::qt {

namespace {

constexpr const char* kSessionBus = "DBUS_SESSION_BUS_ADDRESS";
/// Qt's accessibility bridge prefers this address to that of the session bus, so that it does not connect to
/// the latter.
constexpr const char* kAccessibilityBus = "AT_SPI_BUS_ADDRESS";

/// How long the accessibility service and its bus may take to reply before the program does without them.
constexpr std::chrono::seconds kAccessibilityPatience{5};

/// How long a bus that does not reply keeps the icon out of another tray.
constexpr std::chrono::seconds kBusPatience{2};

/// How long a window waits for a bus that has just replied and now does not accept a connection. Longer than
/// for a bus that has not replied: to break off leaves Qt without the bus until the program ends, and it
/// cannot go on meanwhile, because any widget makes Qt create the accessibility bridge, which waits for it.
constexpr std::chrono::seconds kConnectingPatience{1};

// How long to wait before a lost bus is probed again: doubles from the first to the longest.
constexpr std::chrono::milliseconds kFirstRetry{250};
constexpr std::chrono::milliseconds kLongestRetry{4000};

/// Returns the address in the environment, else that of the user's bus, as the D-Bus library does.
std::string addressOfEnvironment() {
    const QByteArray address = qgetenv(kSessionBus);
    if (!address.isEmpty())
        return address.toStdString();
    const QByteArray folder = qgetenv("XDG_RUNTIME_DIR");
    return folder.isEmpty() ? std::string() : QByteArray("unix:path=" + folder + "/bus").toStdString();
}

} // namespace

HiddenBus::HiddenBus(const char* variable)
    : m_variable(variable), m_wasSet(qEnvironmentVariableIsSet(variable)), m_address(qgetenv(variable)) {
    qputenv(variable, "disabled:");
}

HiddenBus::~HiddenBus() {
    if (m_wasSet)
        qputenv(m_variable, m_address);
    else
        qunsetenv(m_variable);
}

SessionBus::SessionBus(QtMainQueue& queue, std::chrono::milliseconds windowPatience)
    : m_queue(queue), m_windowPatience(windowPatience), m_address(addressOfEnvironment()),
      m_nextRetry(kFirstRetry), m_later(queue) {
    m_hiddenFromQt.emplace(kSessionBus);
    m_hiddenFromBridge.emplace(kAccessibilityBus);
    m_lost.setSingleShot(true);
    QObject::connect(&m_lost, &QTimer::timeout, &m_lost, [this] { lost(); });
    m_probe.emplace(m_address);
}

SessionBus::~SessionBus() {
    disconnect();
}

void SessionBus::beforeInputMethod() {
    if (m_probe && m_probe->wait(m_windowPatience) == BusProbe::State::Replied)
        m_hiddenFromQt.reset();
}

void SessionBus::start(std::function<std::string()> accessibilityBusOfScreen) {
    m_accessibilityBusOfScreen = std::move(accessibilityBusOfScreen);
    m_expectation = m_queue.asyncAfter(kBusPatience, [this] { awaitConnection(); });
    proceed();
}

/// Gives a connection that is being made its time, because the bus may have replied just now.
void SessionBus::awaitConnection() {
    if (m_connecting)
        m_expectation = m_queue.asyncAfter(kConnectingPatience, [this] { stopConnecting(); });
    else
        stopExpecting();
}

/// Leaves Qt's parts undecided if the connecting cannot be broken off, because they would wait for its end.
void SessionBus::stopConnecting() {
    if (m_connecting)
        m_connecting->breakOff();
    finishConnecting();
    if (!m_connecting)
        stopExpecting();
}

void SessionBus::beforeWindow() {
    if (!m_hiddenFromBridge)
        return;
    const auto end = m_queue.now() + m_windowPatience;
    if (m_probe) {
        m_probe->wait(m_windowPatience);
        proceed();
    }
    if (m_connecting && !m_connecting->wait(kConnectingPatience))
        m_connecting->breakOff();
    finishConnecting();
    // Qt receives the replies in another thread, and has no wait with a limit.
    while (m_accessibility && m_accessibility->proceed() == AccessibilityProbe::State::Waiting &&
           m_queue.now() < end)
        QThread::msleep(1);
    if (m_accessibility)
        finishAccessibility();
    else if (m_hiddenFromBridge)
        createBridge();
}

void SessionBus::keepQtOff() {
    if (m_connecting)
        m_connecting->breakOff(); // its end is taken up by the event loop
    if (m_isQtConnected)
        return;
    const HiddenBus hidden(kSessionBus);
    // Qt keeps the failed connection.
    [[maybe_unused]] const QDBusConnection none = QDBusConnection::sessionBus();
}

SessionBus::QtParts SessionBus::qtParts() const {
    if (m_accessibility)
        return QtParts::Undecided;
    if (m_isQtConnected)
        return QtParts::Connected;
    return m_expectation ? QtParts::Undecided : QtParts::WithoutBus;
}

std::optional<QDBusConnection> SessionBus::connection() const {
    return m_connection && m_connection->isConnected() ? m_connection : std::nullopt;
}

SubscriptionPtr SessionBus::onChanged(std::function<void()> changed) {
    return m_changed.connect(std::move(changed));
}

void SessionBus::probe() {
    m_probe.emplace(m_address);
    proceed();
}

/// Connects if the bus has replied, and waits if it has not. A probe has no time limit: a bus that hangs
/// replies to it when it goes on.
void SessionBus::proceed() {
    switch (m_probe->proceed()) {
    case BusProbe::State::Waiting:
        if (!m_reply)
            m_reply = m_queue.onReadable(m_probe->fileDescriptor(), [this] { proceed(); });
        return;
    case BusProbe::State::Failed:
    case BusProbe::State::Full:
        retry();
        return;
    case BusProbe::State::Replied:
        connect();
    }
}

void SessionBus::retry() {
    m_reply.reset();
    m_probe.reset();
    m_hiddenFromQt.reset();
    if (m_hiddenFromBridge)
        createBridge();
    stopExpecting();
    if (!BusProbe::supports(m_address))
        return;
    m_later.asyncAfter(m_nextRetry, [this] { probe(); });
    m_nextRetry = std::min(2 * m_nextRetry, kLongestRetry);
}

void SessionBus::stopExpecting() {
    if (std::exchange(m_expectation, nullptr))
        m_changed.send();
}

/// Connects to a bus that has just replied, the first time together with Qt's parts.
void SessionBus::connect() {
    std::string peer = peerName(m_probe->fileDescriptor());
    m_reply.reset();
    m_probe.reset();
    m_hiddenFromQt.reset();
    // Not only Qt's connection: it is not renewed after a loss.
    m_connecting.emplace(std::move(peer), m_address, QStringLiteral("tessarel-%1").arg(++m_connections));
    m_reply = m_queue.onReadable(m_connecting->fileDescriptor(), [this] { finishConnecting(); });
}

/// Takes up the new connection once it has been made, or could not be made.
void SessionBus::finishConnecting() {
    if (!m_connecting || !m_connecting->wait(std::chrono::milliseconds::zero()))
        return;
    m_reply.reset();
    auto [isQtConnected, connection] = m_connecting->result();
    m_connecting.reset();
    m_isQtConnected = m_isQtConnected || isQtConnected;
    m_connection = std::move(connection);
    if (!m_connection)
        return retry();
    m_nextRetry = kFirstRetry;
    m_expectation.reset();
    m_connection->connect({}, QStringLiteral("/org/freedesktop/DBus/Local"),
                          QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"),
                          &m_lost, SLOT(start()));
    if (m_hiddenFromBridge)
        probeAccessibility();
    m_changed.send();
}

void SessionBus::probeAccessibility() {
    m_accessibility.emplace(m_queue, *m_connection,
                            AccessibilityProbe::Announced{
                                .byEnvironment = m_hiddenFromBridge->address().toStdString(),
                                .byScreen = m_accessibilityBusOfScreen ? m_accessibilityBusOfScreen() : ""},
                            kAccessibilityPatience, [this] { proceedWithAccessibility(); });
    m_accessibilityEnd = m_queue.asyncAfter(kAccessibilityPatience, [this] { finishAccessibility(); });
}

void SessionBus::proceedWithAccessibility() {
    if (m_accessibility->proceed() != AccessibilityProbe::State::Waiting)
        finishAccessibility();
}

/// Creates the bridge, with the bus if it need not wait for a reply.
void SessionBus::finishAccessibility() {
    if (m_accessibility->proceed() == AccessibilityProbe::State::Replied && connection())
        m_hiddenFromBridge.reset();
    createBridge();
    m_changed.send();
}

void SessionBus::createBridge() {
    m_accessibilityEnd.reset();
    m_accessibility.reset();
    QAccessible::setRootObject(QCoreApplication::instance());
    m_hiddenFromBridge.reset();
}

void SessionBus::disconnect() {
    if (m_connection)
        QDBusConnection::disconnectFromBus(std::exchange(m_connection, std::nullopt)->name());
}

void SessionBus::lost() {
    disconnect();
    retry();
    m_changed.send();
}

} // namespace tessarel::qt
