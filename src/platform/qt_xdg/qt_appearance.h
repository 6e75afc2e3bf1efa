// SPDX-License-Identifier: MIT

#pragma once

#include "look/palette.h"
#include "platform/qt_xdg/desktop_accent.h"

#include <QColor>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QString>
#include <QTimer>
#include <QVariantMap>

#include <functional>
#include <memory>
#include <optional>

namespace tessarel::qt {

/// Applies the user's preferred colours, and the program's icon, to all windows, and follows their changes.
///
/// The preferences are read from the desktop portal, over D-Bus, as soon as there is a bus, without waiting.
/// Only the first window waits for them, for 50 ms at most; the defaults apply until a later reply. Where the
/// portal announces no accent colour, that of `DesktopAccent` is used.
class QtAppearance {
public:
    /// `bus` returns the session bus if there is one at present. It is not called before the functions below.
    explicit QtAppearance(std::function<std::optional<QDBusConnection>()> bus);
    QtAppearance(const QtAppearance&) = delete;
    QtAppearance& operator=(const QtAppearance&) = delete;

    /// Applies the current preferences, and later changes from then on. Requires the application object.
    /// Further calls do nothing.
    void apply();
    /// Reads the preferences from a new bus. Without a bus, the colours stay. Requires the application
    /// object.
    void busChanged();

    /// Returns the accent colour that applies now.
    [[nodiscard]] QColor accent() const { return m_appearance.accent; }

private:
    void follow();
    void showFirst();
    void read();
    void take(const QDBusMessage& reply);
    void show(const QVariantMap& settings);
    void showWithoutPortal();
    void use(const Appearance& appearance);

    std::function<std::optional<QDBusConnection>()> m_bus;
    QString m_followed; // name of the connection whose signals start the timer
    /// Coalesces change signals: each one restarts the timer, which fires once none is pending.
    QTimer m_changed;
    std::unique_ptr<QDBusPendingCallWatcher> m_query; // while the portal's reply is pending
    Appearance m_appearance;
    DesktopAccent m_desktopAccent;
    bool m_isApplied = false;
    bool m_hasReplied = false;
    bool m_hasAccent = false; // in the portal's reply
};

} // namespace tessarel::qt
