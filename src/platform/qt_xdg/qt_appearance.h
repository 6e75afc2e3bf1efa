#pragma once

#include "platform/qt_xdg/appearance.h"

#include <QDBusConnection>
#include <QTimer>
#include <QVariantMap>

#include <functional>

namespace tessarel::qt {

/// Gives all windows the colours that the user's desktop prefers.
///
/// The desktop is asked on its bus when the first window is about to be shown, so that a start without
/// windows does not wait for it. One that does not answer soon has no preference until it tells of one. The
/// windows have the program's icon, too.
class QtAppearance {
public:
    /// `bus` is not called before the desktop is asked.
    explicit QtAppearance(std::function<QDBusConnection()> bus = QDBusConnection::sessionBus);
    QtAppearance(const QtAppearance&) = delete;
    QtAppearance& operator=(const QtAppearance&) = delete;

    /// Takes on what the desktop prefers now, and from now on follows it. Does nothing when called again.
    void apply();

private:
    void read();
    [[nodiscard]] QVariantMap settings() const;

    std::function<QDBusConnection()> m_bus;
    QTimer m_changed; ///< runs out when the desktop has told of a change
    bool m_follows = false;
};

} // namespace tessarel::qt
