// SPDX-License-Identifier: MIT

#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QVariant>

#include <optional>

namespace tessarel::qt {

/// Stands in for the StatusNotifierItem of Qt's icon and says that the item is a menu, so that the panel
/// opens the menu with either mouse button. Qt's own item says the contrary.
///
/// Takes everything else from Qt's item. Where Qt has none that this class knows, nothing changes.
class ItemAsMenu : public QDBusVirtualObject {
public:
    ItemAsMenu() = default;
    ItemAsMenu(const ItemAsMenu&) = delete;
    ItemAsMenu& operator=(const ItemAsMenu&) = delete;
    ~ItemAsMenu() override;

    /// Takes the place of Qt's item unless it has done so, and tells panels that the icon and the tool tip
    /// may have changed. Call it after every change of the icon.
    void refresh();

    [[nodiscard]] QString introspect(const QString& path) const override;
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

private:
    bool replace(QDBusConnection connection);
    [[nodiscard]] QVariant property(const QString& name) const;
    [[nodiscard]] QVariantMap properties() const;
    [[nodiscard]] QDBusMessage replyTo(const QDBusMessage& message) const;

    QPointer<QObject> m_item; ///< Qt's, which has all properties
    std::optional<QDBusConnection> m_connection;
};

} // namespace tessarel::qt
