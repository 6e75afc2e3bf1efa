#pragma once

#include <QAbstractNativeEventFilter>
#include <QByteArray>

#include <cstdint>
#include <functional>

namespace tessarel::qt {

/// Whether something puts translucent windows together on the screen. On X11 that is a program that comes and
/// goes and owns the selection "_NET_WM_CM_S<screen>" meanwhile; elsewhere it is always there.
class CompositorWatch : public QAbstractNativeEventFilter {
public:
    /// Calls `gone` when a compositor that `isRunning` has seen ends.
    explicit CompositorWatch(std::function<void()> gone);

    /// Asks the server, which answers within a fraction of a millisecond.
    [[nodiscard]] bool isRunning();

private:
    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

    std::function<void()> m_gone;
    std::uint32_t m_owner = 0; // the window whose end we are told of
};

} // namespace tessarel::qt
