// SPDX-License-Identifier: MIT

#pragma once

#include <QAbstractNativeEventFilter>
#include <QByteArray>

#include <cstdint>
#include <functional>

namespace tessarel::qt {

/// Watches whether a compositor runs, without which translucent windows are opaque.
///
/// On X11 the compositor is a program that can start and exit at any time; while it runs it owns the
/// selection `_NET_WM_CM_S<screen>`. On other systems compositing is assumed to be always available.
class CompositorWatch : public QAbstractNativeEventFilter {
public:
    /// Calls `gone` when the compositor that `isRunning` last found exits. Requires the application object.
    explicit CompositorWatch(std::function<void()> gone);

    /// Returns whether a compositor runs now, and starts watching it. Takes a few round trips on Qt's
    /// connection, which is a fraction of a millisecond.
    [[nodiscard]] bool isRunning();

private:
    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

    std::function<void()> m_gone;
    std::uint32_t m_owner = 0; // the selection owner whose DestroyNotify is selected; 0 for none
};

} // namespace tessarel::qt
