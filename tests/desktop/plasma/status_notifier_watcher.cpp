// SPDX-License-Identifier: MIT

// Plays Plasma's panel as far as status items can tell: the watcher at which they register, with a host.

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QStringList>
#include <QVariant>

namespace {

class Watcher : public QDBusVirtualObject {
public:
    Watcher() {
        m_owners.setConnection(QDBusConnection::sessionBus());
        m_owners.setWatchMode(QDBusServiceWatcher::WatchForUnregistration);
        QObject::connect(&m_owners, &QDBusServiceWatcher::serviceUnregistered, this,
                         [this](const QString& name) { m_items.removeAll(name); });
    }

    [[nodiscard]] QString introspect(const QString&) const override {
        return QStringLiteral(
            "<interface name='org.kde.StatusNotifierWatcher'>"
            "<method name='RegisterStatusNotifierItem'><arg type='s' direction='in'/></method>"
            "<property name='RegisteredStatusNotifierItems' type='as' access='read'/>"
            "<property name='IsStatusNotifierHostRegistered' type='b' access='read'/>"
            "</interface>");
    }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        if (message.member() == QLatin1String("RegisterStatusNotifierItem")) {
            m_items.append(message.service());
            m_owners.addWatchedService(message.service());
            return connection.send(message.createReply());
        }
        if (message.member() != QLatin1String("Get"))
            return false;
        const bool asksForItems =
            message.arguments().value(1) == QLatin1String("RegisteredStatusNotifierItems");
        const QVariant value = asksForItems ? QVariant(m_items) : QVariant(true);
        return connection.send(message.createReply(QVariant::fromValue(QDBusVariant(value))));
    }

private:
    QStringList m_items;
    QDBusServiceWatcher m_owners;
};

} // namespace

int main(int argumentCount, char** arguments) {
    const QCoreApplication application(argumentCount, arguments);
    auto bus = QDBusConnection::sessionBus();
    Watcher watcher;
    bus.registerVirtualObject(QStringLiteral("/StatusNotifierWatcher"), &watcher);
    bus.registerService(QStringLiteral("org.kde.StatusNotifierWatcher"));
    return QCoreApplication::exec();
}
