// SPDX-License-Identifier: MIT

#pragma once

#include "platform/qt_xdg/session_bus.h"
#include "ports/deferred_work.h"

#include <QAbstractNativeEventFilter>
#include <QDBusPendingCallWatcher>
#include <QTimer>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace tessarel::qt {

/// Watches for a panel that can show a status icon. Never blocks, and does not poll unless the start of a
/// panel is expected.
///
/// Qt chooses between StatusNotifierItem and XEmbed when the program creates its first icon, and keeps to
/// that choice until exit. The first icon is therefore created only when a place is available.
class TrayWatch : private QAbstractNativeEventFilter {
public:
    /// Where an icon can be shown.
    enum class Place : std::uint8_t {
        /// A panel that embeds windows of other programs (XEmbed).
        SystemTray,
        /// A panel that draws the icon itself, from data on the session bus.
        StatusNotifierHost,
    };

    /// Calls `looked` from the event loop after each look, first on startup and then whenever a place may
    /// have become available: with the place, if there is one, or that of two which Qt chooses. Requires the
    /// application object. `bus` and `queue` must outlive the watch. The callback must not destroy the watch.
    TrayWatch(SessionBus& bus, MainQueuePort& queue, std::function<void(std::optional<Place>)> looked);
    TrayWatch(const TrayWatch&) = delete;
    TrayWatch& operator=(const TrayWatch&) = delete;
    ~TrayWatch() override;

private:
    /// The reply of a StatusNotifierWatcher on the session bus.
    enum class Watcher : std::uint8_t {
        None,
        /// There is a watcher that does not reply.
        Silent,
        /// There is a watcher, but no panel has registered yet. Its start will not be announced.
        WithoutHost,
        WithHost,
    };

    void watchBus();
    void lookAfterSign();
    void look();
    void finishLook(Watcher watcher);
    [[nodiscard]] static Watcher decode(const QDBusMessage& reply);
    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

    SessionBus& m_bus;
    std::function<void(std::optional<Place>)> m_looked;
    SubscriptionPtr m_busChanged;
    QTimer m_sign; // coalesces signs: fires once no more of them are pending
    std::unique_ptr<QDBusPendingCallWatcher> m_query; // while a look waits for a reply
    bool m_hasNewSign = false;                        // since that look started
    int m_looksLeft = 0;
    std::uint32_t m_managerAtom = 0;   // type of the client message that announces a new tray
    std::uint32_t m_selectionAtom = 0; // the selection that the tray of this X screen owns
    DeferredWork m_later;
};

} // namespace tessarel::qt
