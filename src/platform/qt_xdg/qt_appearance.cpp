// SPDX-License-Identifier: MIT

#include "platform/qt_xdg/qt_appearance.h"

#include "platform/qt_xdg/appearance.h"
#include "platform/qt_xdg/application_icon.h"
#include "platform/xdg/environment.h"

#include <QApplication>
#include <QDBusArgument>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QMap>
#include <QStringList>
#include <QtGlobal>

#include <chrono>
#include <utility>

namespace tessarel::qt {

namespace {

const QString kService = QStringLiteral("org.freedesktop.portal.Desktop");
const QString kPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString kInterface = QStringLiteral("org.freedesktop.portal.Settings");
const QString kNamespace = QStringLiteral("org.freedesktop.appearance");

/// How long the first window waits for the portal's reply.
constexpr std::chrono::milliseconds kPatience{50};

QDBusMessage question() {
    QDBusMessage message =
        QDBusMessage::createMethodCall(kService, kPath, kInterface, QStringLiteral("ReadAll"));
    message << QStringList{kNamespace};
    return message;
}

/// Decodes the portal's settings. Empty if `reply` is an error or has another type.
QVariantMap settings(const QDBusMessage& reply) {
    if (reply.signature() != QLatin1String("a{sa{sv}}"))
        return {};
    QMap<QString, QVariantMap> all;
    reply.arguments().first().value<QDBusArgument>() >> all;
    return all.value(kNamespace);
}

} // namespace

QtAppearance::QtAppearance(std::function<std::optional<QDBusConnection>()> bus)
    : m_bus(std::move(bus)), m_desktopAccent(xdg::currentDesktops(), [this](const QColor& accent) {
          if (!m_hasAccent)
              use({.isDark = m_appearance.isDark, .accent = accent});
      }) {
    m_changed.setSingleShot(true);
    QObject::connect(&m_changed, &QTimer::timeout, &m_changed, [this] { read(); });
}

void QtAppearance::apply() {
    if (m_isApplied)
        return;
    m_isApplied = true;
    QApplication::setWindowIcon(applicationIcon());
    follow();
    showFirst();
}

/// Waits for the portal, but not long. A reply that comes later is applied then.
void QtAppearance::showFirst() {
    const std::optional<QDBusConnection> bus = m_bus();
    if (!bus)
        return showWithoutPortal();
    const QDBusMessage reply = bus->call(question(), QDBus::Block, static_cast<int>(kPatience.count()));
    take(reply);
    if (QDBusError(reply).type() == QDBusError::NoReply)
        m_changed.start();
}

void QtAppearance::busChanged() {
    if (!m_bus())
        return showWithoutPortal();
    follow();
    m_changed.start();
}

/// Subscribes to changes. Names no sender, because Qt would wait until the bus has replied who that is; a
/// signal only causes the settings to be read again, so its sender does not matter.
void QtAppearance::follow() {
    std::optional<QDBusConnection> bus = m_bus();
    if (!bus || bus->name() == m_followed)
        return;
    m_followed = bus->name();
    bus->connect({}, kPath, kInterface, QStringLiteral("SettingChanged"), &m_changed, SLOT(start()));
}

/// Queries the settings without waiting. A query that is pending is dropped.
void QtAppearance::read() {
    const std::optional<QDBusConnection> bus = m_bus();
    if (!bus)
        return;
    m_query = std::make_unique<QDBusPendingCallWatcher>(bus->asyncCall(question()));
    QObject::connect(m_query.get(), &QDBusPendingCallWatcher::finished, m_query.get(), [this] {
        QDBusPendingCallWatcher* const query = m_query.release();
        query->deleteLater();
        take(query->reply());
    });
}

void QtAppearance::take(const QDBusMessage& reply) {
    if (reply.type() != QDBusMessage::ReplyMessage)
        return showWithoutPortal();
    m_hasReplied = true;
    show(settings(reply));
}

/// Shows what is known without the portal. Does nothing once the portal has replied, so that an error changes
/// no colours.
void QtAppearance::showWithoutPortal() {
    if (!m_hasReplied)
        show({});
}

/// Without an accent colour in `settings`, the present one stays until the desktop's has been found, unless
/// the portal has announced it.
void QtAppearance::show(const QVariantMap& settings) {
    const std::optional<QColor> accent = accentColor(settings);
    const bool isTakenBack = std::exchange(m_hasAccent, accent.has_value()) && !accent;
    use({.isDark = prefersDark(settings, qEnvironmentVariable("GTK_THEME")),
         .accent = isTakenBack ? Appearance().accent : accent.value_or(m_appearance.accent)});
    if (!m_hasAccent)
        m_desktopAccent.read();
}

void QtAppearance::use(const Appearance& appearance) {
    m_appearance = appearance;
    QApplication::setPalette(paletteOf(appearance));
}

} // namespace tessarel::qt
