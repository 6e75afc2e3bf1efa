// SPDX-License-Identifier: MIT

#include "platform/qt_x11/tray/icon_connections.h"

#include <QCoreApplication>
#include <QString>

namespace tessarel::qt {

QList<QDBusConnection> iconConnections() {
    constexpr int kMostIcons = 32;
    QList<QDBusConnection> all{QDBusConnection::sessionBus()};
    for (int icon = 1; icon <= kMostIcons; ++icon)
        all.append(QDBusConnection(QStringLiteral("org.kde.StatusNotifierItem-%1-%2")
                                       .arg(QCoreApplication::applicationPid())
                                       .arg(icon)));
    return all;
}

} // namespace tessarel::qt
