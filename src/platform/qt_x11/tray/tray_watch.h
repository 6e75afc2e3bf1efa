#pragma once

#include <QAbstractNativeEventFilter>
#include <QDBusServiceWatcher>

#include <cstdint>
#include <functional>

namespace tessarel::qt {

/// Looks out for a place where a status icon can stand, without asking for it again and again.
///
/// Qt decides how it shows status icons when the first one is made, once for the whole run of the program,
/// and then keeps looking for that one kind of place only. So the first icon had better wait for a place.
class TrayWatch : private QAbstractNativeEventFilter {
public:
    enum class Place : std::uint8_t {
        None,
        Expected,           ///< somebody on the session bus waits for a panel, which will not be announced
        SystemTray,         ///< a window of the panel's that takes windows of other programs in
        StatusNotifierHost, ///< a panel that is told on the session bus what to draw
    };

    /// Calls `sign`, from inside the loop, at everything that may mean a new place, or that one is expected
    /// from now on. Needs the application object; the callback may not destroy the watch.
    explicit TrayWatch(std::function<void()> sign);
    TrayWatch(const TrayWatch&) = delete;
    TrayWatch& operator=(const TrayWatch&) = delete;
    ~TrayWatch() override;

    /// The place that there is now; of two the one that Qt would choose.
    [[nodiscard]] Place place() const;

private:
    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

    std::function<void()> m_sign;
    QDBusServiceWatcher m_busWatcher;
    std::uint32_t m_managerAtom = 0;   // type of the message by which a new tray makes itself known
    std::uint32_t m_selectionAtom = 0; // what the tray of our screen owns
};

} // namespace tessarel::qt
