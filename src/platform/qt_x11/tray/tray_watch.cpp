#include "platform/qt_x11/tray/tray_watch.h"

#include "platform/qt_x11/qt_connection.h"

#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QGuiApplication>
#include <QObject>
#include <xcb/xcb.h>

#include <chrono>
#include <string>
#include <utility>

namespace tessarel::qt {

namespace {

const QString kWatcherService = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString kWatcherPath = QStringLiteral("/StatusNotifierWatcher");

/// The time limit for a call. A watcher that hangs must not keep the program from starting.
constexpr std::chrono::milliseconds kPatience{500};

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

/// Queries the StatusNotifierWatcher whether a panel (a "host") is registered. Does not start the watcher.
TrayWatch::Place placeOnBus() {
    QDBusMessage question = QDBusMessage::createMethodCall(kWatcherService, kWatcherPath,
                                                           QStringLiteral("org.freedesktop.DBus.Properties"),
                                                           QStringLiteral("Get"));
    question.setAutoStartService(false);
    question << kWatcherService << QStringLiteral("IsStatusNotifierHostRegistered");
    const QDBusMessage answer =
        QDBusConnection::sessionBus().call(question, QDBus::Block, static_cast<int>(kPatience.count()));
    if (answer.arguments().value(0).value<QDBusVariant>().variant().toBool())
        return TrayWatch::Place::StatusNotifierHost;
    return isThereSomebody(answer) ? TrayWatch::Place::Expected : TrayWatch::Place::None;
}

} // namespace

TrayWatch::TrayWatch(std::function<void()> sign)
    : m_sign(std::move(sign)), m_busWatcher(kWatcherService, QDBusConnection::sessionBus(),
                                            QDBusServiceWatcher::WatchForRegistration) {
    QObject::connect(&m_busWatcher, &QDBusServiceWatcher::serviceRegistered, &m_busWatcher,
                     [this] { m_sign(); });
    if (xcb_connection_t* const xcb = qtConnection()) {
        m_managerAtom = internAtom(xcb, "MANAGER");
        m_selectionAtom = internAtom(xcb, "_NET_SYSTEM_TRAY_S" + std::to_string(screenNumber()));
        qGuiApp->installNativeEventFilter(this);
    }
}

TrayWatch::~TrayWatch() {
    if (qGuiApp != nullptr)
        qGuiApp->removeNativeEventFilter(this);
}

TrayWatch::Place TrayWatch::place() const {
    const Place onBus = placeOnBus();
    if (onBus == Place::StatusNotifierHost || !isOwned(m_selectionAtom))
        return onBus;
    return Place::SystemTray;
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
        m_sign();
    return false;
}

} // namespace tessarel::qt
