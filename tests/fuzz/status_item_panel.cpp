// SPDX-License-Identifier: MIT

// Plays a panel that shows nothing: registers as the watcher of status items, and as a host of its own.

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>

#include <cstdio>

namespace {

class Watcher : public QDBusVirtualObject {
public:
    [[nodiscard]] QString introspect(const QString& /*path*/) const override {
        return QStringLiteral("<interface name=\"org.kde.StatusNotifierWatcher\"><property "
                              "name=\"IsStatusNotifierHostRegistered\" type=\"b\" access=\"read\"/>"
                              "</interface>");
    }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        if (message.member() == QStringLiteral("Introspect"))
            return false; // Qt replies
        const bool isProperty = message.member() == QStringLiteral("Get");
        connection.send(isProperty ? message.createReply(QVariant::fromValue(QDBusVariant(true)))
                                   : message.createReply());
        return true;
    }
};

} // namespace

int main(int count, char** arguments) {
    const QCoreApplication application(count, arguments);
    QDBusConnection bus = QDBusConnection::sessionBus();
    Watcher watcher;
    if (!bus.registerVirtualObject(QStringLiteral("/StatusNotifierWatcher"), &watcher) ||
        !bus.registerService(QStringLiteral("org.kde.StatusNotifierWatcher")))
        return 1;
    std::puts("ready");
    std::fflush(stdout);
    return QCoreApplication::exec();
}
