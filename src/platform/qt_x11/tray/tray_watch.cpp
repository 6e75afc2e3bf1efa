// SPDX-License-Identifier: MIT

#include "platform/qt_x11/tray/tray_watch.h"

#include "platform/qt_x11/qt_connection.h"

#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusVariant>
#include <QGuiApplication>
#include <QObject>
#include <xcb/xcb.h>

#include <chrono>
#include <optional>
#include <string>
#include <utility>

namespace tessarel::qt {

namespace {

const QString kWatcherService = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString kWatcherPath = QStringLiteral("/StatusNotifierWatcher");

// A panel that registers with an existing watcher on the session bus is not announced. While one is expected,
// the watcher is queried this often at this interval, and then not again until the next sign.
constexpr int kLooks = 15;
constexpr std::chrono::seconds kBetweenLooks{2};

/// Returns whether the selection has an owner. Takes a round trip.
bool isOwned(xcb_atom_t selection) {
    xcb_connection_t* const xcb = qtConnection();
    return xcb != nullptr && selection != XCB_ATOM_NONE && ownerOf(xcb, selection) != XCB_WINDOW_NONE;
}

/// Returns whether a watcher exists, even if its reply is an error or did not arrive in time.
bool isThereSomebody(const QDBusMessage& answer) {
    switch (QDBusError(answer).type()) {
    case QDBusError::Disconnected:
    case QDBusError::ServiceUnknown:
    // This is how the bus reports a name without an owner when it may not start a service for it.
    case QDBusError::Other:
        return false;
    default:
        return true;
    }
}

/// Returns the question whether a panel (a "host") is registered. It does not start the watcher.
QDBusMessage question() {
    QDBusMessage message = QDBusMessage::createMethodCall(kWatcherService, kWatcherPath,
                                                          QStringLiteral("org.freedesktop.DBus.Properties"),
                                                          QStringLiteral("Get"));
    message.setAutoStartService(false);
    message << kWatcherService << QStringLiteral("IsStatusNotifierHostRegistered");
    return message;
}

} // namespace

TrayWatch::TrayWatch(SessionBus& bus, MainQueuePort& queue, std::function<void(std::optional<Place>)> looked)
    : m_bus(bus), m_looked(std::move(looked)), m_busChanged(bus.onChanged([this] { watchBus(); })),
      m_later(queue) {
    m_sign.setSingleShot(true);
    QObject::connect(&m_sign, &QTimer::timeout, &m_sign, [this] { lookAfterSign(); });
    if (xcb_connection_t* const xcb = qtConnection()) {
        m_managerAtom = internAtom(xcb, "MANAGER");
        m_selectionAtom = internAtom(xcb, "_NET_SYSTEM_TRAY_S" + std::to_string(screenNumber()));
        qGuiApp->installNativeEventFilter(this);
    }
    watchBus();
}

TrayWatch::~TrayWatch() {
    if (qGuiApp != nullptr)
        qGuiApp->removeNativeEventFilter(this);
}

/// Subscribes to the start of a watcher on the present bus. Names no sender; see `SessionBus::connection`.
void TrayWatch::watchBus() {
    if (std::optional<QDBusConnection> bus = m_bus.connection())
        bus->connect({}, QStringLiteral("/org/freedesktop/DBus"), QStringLiteral("org.freedesktop.DBus"),
                     QStringLiteral("NameOwnerChanged"), {kWatcherService}, {}, &m_sign, SLOT(start()));
    m_sign.start();
}

/// Restarts the count of looks.
void TrayWatch::lookAfterSign() {
    m_looksLeft = kLooks;
    look();
}

/// Queries the watcher, unless a query is pending: then again after its reply.
void TrayWatch::look() {
    m_hasNewSign = m_query != nullptr;
    if (m_query)
        return;
    if (m_bus.qtParts() == SessionBus::QtParts::Undecided)
        return; // the bus reports when that changes
    const std::optional<QDBusConnection> bus = m_bus.connection();
    if (!bus || m_bus.qtParts() == SessionBus::QtParts::WithoutBus)
        return finishLook(Watcher::None);
    m_query = std::make_unique<QDBusPendingCallWatcher>(bus->asyncCall(question()));
    QObject::connect(m_query.get(), &QDBusPendingCallWatcher::finished, m_query.get(), [this] {
        const QDBusMessage reply = m_query->reply();
        m_query.release()->deleteLater();
        finishLook(decode(reply));
    });
}

void TrayWatch::finishLook(Watcher watcher) {
    if (watcher == Watcher::WithHost)
        m_looked(Place::StatusNotifierHost);
    else if (watcher != Watcher::Silent && isOwned(m_selectionAtom)) // Qt would wait for a silent watcher
        m_looked(Place::SystemTray);
    else
        m_looked(std::nullopt);
    if (m_hasNewSign)
        look();
    else if (watcher != Watcher::WithHost && watcher != Watcher::None && --m_looksLeft > 0)
        m_later.asyncAfter(kBetweenLooks, [this] { look(); });
}

TrayWatch::Watcher TrayWatch::decode(const QDBusMessage& reply) {
    if (reply.arguments().value(0).value<QDBusVariant>().variant().toBool())
        return Watcher::WithHost;
    if (QDBusError(reply).type() == QDBusError::NoReply)
        return Watcher::Silent;
    return isThereSomebody(reply) ? Watcher::WithoutHost : Watcher::None;
}

/// Recognises the MANAGER client message, by which a new selection owner announces itself on the root window
/// (ICCCM 2.8). Qt selects StructureNotify on the root window, with which this message is sent.
bool TrayWatch::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*) {
    if (eventType != "xcb_generic_event_t")
        return false;
    constexpr std::uint8_t kSentBySomebody = 0x80; // the SendEvent bit
    const auto* const event = static_cast<const xcb_generic_event_t*>(message);
    if ((event->response_type & ~kSentBySomebody) != XCB_CLIENT_MESSAGE)
        return false;
    const auto* const news = static_cast<const xcb_client_message_event_t*>(message);
    if (news->type == m_managerAtom && news->data.data32[1] == m_selectionAtom)
        m_sign.start();
    return false;
}

} // namespace tessarel::qt
