#pragma once

#include "platform/qt_xdg/appearance.h"

#include <QDBusConnection>
#include <QTimer>
#include <QVariantMap>

#include <functional>

namespace tessarel::qt {

/// Applies the user's preferred colours, and the program's icon, to all windows.
///
/// The preferences are read from the desktop portal, over D-Bus, when the first window is about to be shown,
/// so that a start without windows does not wait for the reply. If no reply arrives in time, the defaults
/// apply until the portal reports a change.
class QtAppearance {
public:
    /// `bus` is first called by `apply`.
    explicit QtAppearance(std::function<QDBusConnection()> bus = QDBusConnection::sessionBus);
    QtAppearance(const QtAppearance&) = delete;
    QtAppearance& operator=(const QtAppearance&) = delete;

    /// Applies the current preferences, and later changes from then on. Requires the application object.
    /// Further calls do nothing.
    void apply();

private:
    void read();
    [[nodiscard]] QVariantMap settings() const;

    std::function<QDBusConnection()> m_bus;
    /// Coalesces change signals: each one restarts the timer, which fires once none is pending.
    QTimer m_changed;
    bool m_follows = false;
};

} // namespace tessarel::qt
