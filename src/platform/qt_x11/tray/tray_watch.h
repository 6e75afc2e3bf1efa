#pragma once

#include <QAbstractNativeEventFilter>
#include <QDBusServiceWatcher>

#include <cstdint>
#include <functional>

namespace tessarel::qt {

/// Watches for a panel that can show a status icon, without polling.
///
/// Qt chooses between StatusNotifierItem and XEmbed when the program creates its first icon, and keeps to
/// that choice until exit. The first icon is therefore created only when a place is available.
class TrayWatch : private QAbstractNativeEventFilter {
public:
    /// Where an icon can be shown.
    enum class Place : std::uint8_t {
        None,
        /// A watcher runs on the session bus, but no panel has registered yet. Its start will not be
        /// announced.
        Expected,
        /// A panel that embeds windows of other programs (XEmbed).
        SystemTray,
        /// A panel that draws the icon itself, from data on the session bus.
        StatusNotifierHost,
    };

    /// Calls `sign` from the event loop whenever `place` may have changed, except for the start of a panel in
    /// state `Expected`. Requires the application object. The callback must not destroy the watch.
    explicit TrayWatch(std::function<void()> sign);
    TrayWatch(const TrayWatch&) = delete;
    TrayWatch& operator=(const TrayWatch&) = delete;
    ~TrayWatch() override;

    /// Returns the available place; if there are two, the one that Qt chooses. Blocks for up to 0.5 s when
    /// the watcher on the session bus does not reply.
    [[nodiscard]] Place place() const;

private:
    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

    std::function<void()> m_sign;
    QDBusServiceWatcher m_busWatcher;
    std::uint32_t m_managerAtom = 0;   // type of the client message that announces a new tray
    std::uint32_t m_selectionAtom = 0; // the selection that the tray of this X screen owns
};

} // namespace tessarel::qt
