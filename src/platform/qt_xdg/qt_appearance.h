#pragma once

#include "platform/qt_xdg/appearance.h"

#include <QDBusConnection>
#include <QDBusPendingCallWatcher>
#include <QString>
#include <QTimer>

#include <functional>
#include <memory>
#include <optional>

namespace tessarel::qt {

/// Applies the user's preferred colours, and the program's icon, to all windows.
///
/// The preferences are read from the desktop portal, over D-Bus, when the first window is about to be shown,
/// so that a start without windows does not wait for the reply. That window waits for 50 ms at most; the
/// defaults apply until a later reply.
class QtAppearance {
public:
    /// `bus` returns the session bus if there is one at present. It is first called by `apply`.
    explicit QtAppearance(std::function<std::optional<QDBusConnection>()> bus);
    QtAppearance(const QtAppearance&) = delete;
    QtAppearance& operator=(const QtAppearance&) = delete;

    /// Applies the current preferences, and later changes from then on. Requires the application object.
    /// Further calls do nothing.
    void apply();
    /// Reads the preferences from a new bus. Does nothing before `apply`, and without a bus, so that windows
    /// keep their colours.
    void busChanged();

private:
    void follow();
    void showFirst();
    void read();

    std::function<std::optional<QDBusConnection>()> m_bus;
    QString m_followed; // name of the connection whose signals start the timer
    /// Coalesces change signals: each one restarts the timer, which fires once none is pending.
    QTimer m_changed;
    std::unique_ptr<QDBusPendingCallWatcher> m_query; // while the portal's reply is pending
    bool m_isApplied = false;
};

} // namespace tessarel::qt
