#include "platform/qt_xdg/qt_appearance.h"

#include "platform/qt_xdg/application_icon.h"

#include <QApplication>
#include <QDBusArgument>
#include <QDBusMessage>
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

/// How long to wait for the portal's reply. Short, because the window that is about to open waits as well.
constexpr std::chrono::milliseconds kPatience{50};

} // namespace

QtAppearance::QtAppearance(std::function<QDBusConnection()> bus) : m_bus(std::move(bus)) {
    m_changed.setSingleShot(true);
    QObject::connect(&m_changed, &QTimer::timeout, &m_changed, [this] { read(); });
}

void QtAppearance::apply() {
    if (m_follows)
        return;
    m_follows = true;
    m_bus().connect(kService, kPath, kInterface, QStringLiteral("SettingChanged"), &m_changed, SLOT(start()));
    QApplication::setWindowIcon(applicationIcon());
    read();
}

void QtAppearance::read() {
    QApplication::setPalette(palette(appearance(settings(), qEnvironmentVariable("GTK_THEME"))));
}

/// Returns the portal's current settings. Empty if no reply arrives in time or it has another type.
QVariantMap QtAppearance::settings() const {
    QDBusMessage question =
        QDBusMessage::createMethodCall(kService, kPath, kInterface, QStringLiteral("ReadAll"));
    question << QStringList{kNamespace};
    const QDBusMessage answer = m_bus().call(question, QDBus::Block, static_cast<int>(kPatience.count()));
    if (answer.signature() != QLatin1String("a{sa{sv}}"))
        return {};
    QMap<QString, QVariantMap> all;
    answer.arguments().first().value<QDBusArgument>() >> all;
    return all.value(kNamespace);
}

} // namespace tessarel::qt
