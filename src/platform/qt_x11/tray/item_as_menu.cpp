// SPDX-License-Identifier: MIT

#include "platform/qt_x11/tray/item_as_menu.h"

#include "platform/qt_x11/tray/icon_connections.h"

#include <QDBusAbstractAdaptor>
#include <QDBusError>
#include <QDBusVariant>
#include <QMetaObject>
#include <QMetaProperty>

#include <utility>

namespace tessarel::qt {

namespace {

const QString kPath = QStringLiteral("/StatusNotifierItem");
const QString kInterface = QStringLiteral("org.kde.StatusNotifierItem");
const QString kItemIsMenu = QStringLiteral("ItemIsMenu");

/// Returns the part of `object` that has the properties of a StatusNotifierItem; null if there is none.
QObject* itemOf(const QObject& object) {
    for (QObject* const part : object.children()) {
        if (part->metaObject()->indexOfProperty("ItemIsMenu") >= 0)
            return part;
    }
    return nullptr;
}

} // namespace

ItemAsMenu::~ItemAsMenu() {
    if (m_connection && m_connection->objectRegisteredAt(kPath) == this)
        m_connection->unregisterObject(kPath);
}

void ItemAsMenu::refresh() {
    for (const QDBusConnection& connection : iconConnections()) {
        if (replace(connection))
            break;
    }
    if (!m_connection)
        return;
    for (const char* const signal : {"NewIcon", "NewToolTip"})
        m_connection->send(QDBusMessage::createSignal(kPath, kInterface, QString::fromLatin1(signal)));
}

/// Returns whether Qt's item was on this connection.
bool ItemAsMenu::replace(QDBusConnection connection) {
    QObject* const object = connection.objectRegisteredAt(kPath);
    QObject* const item = object == nullptr || object == this ? nullptr : itemOf(*object);
    if (item == nullptr)
        return false;
    connection.unregisterObject(kPath);
    connection.registerVirtualObject(kPath, this);
    m_item = item;
    m_connection = std::move(connection);
    return true;
}

QVariant ItemAsMenu::property(const QString& name) const {
    if (name == kItemIsMenu)
        return true;
    return m_item ? m_item->property(name.toLatin1().constData()) : QVariant();
}

QVariantMap ItemAsMenu::properties() const {
    QVariantMap all;
    const QMetaObject* const type = m_item ? m_item->metaObject() : &QDBusAbstractAdaptor::staticMetaObject;
    for (int at = QDBusAbstractAdaptor::staticMetaObject.propertyCount(); at < type->propertyCount(); ++at) {
        const QString name = QString::fromLatin1(type->property(at).name());
        all.insert(name, property(name));
    }
    return all;
}

QString ItemAsMenu::introspect(const QString& /*path*/) const {
    const int at = m_item ? m_item->metaObject()->indexOfClassInfo("D-Bus Introspection") : -1;
    return at < 0 ? QString() : QString::fromUtf8(m_item->metaObject()->classInfo(at).value());
}

/// Clicks get an error: panels that do not ask whether the item is a menu open it then.
QDBusMessage ItemAsMenu::replyTo(const QDBusMessage& message) const {
    const bool isRead = message.interface() == QLatin1String("org.freedesktop.DBus.Properties");
    const QString name = message.arguments().value(1).toString();
    if (isRead && message.member() == QLatin1String("GetAll"))
        return message.createReply(properties());
    if (const QVariant value = property(name);
        isRead && message.member() == QLatin1String("Get") && value.isValid())
        return message.createReply(QVariant::fromValue(QDBusVariant(value)));
    return message.createErrorReply(QDBusError::UnknownMethod, QStringLiteral("the item is a menu"));
}

bool ItemAsMenu::handleMessage(const QDBusMessage& message, const QDBusConnection& connection) {
    if (message.interface() == QLatin1String("org.freedesktop.DBus.Introspectable"))
        return false; // QtDBus replies with `introspect`
    connection.send(replyTo(message));
    return true;
}

} // namespace tessarel::qt
