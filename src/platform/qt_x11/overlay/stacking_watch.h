// SPDX-License-Identifier: MIT

#pragma once

#include <QAbstractNativeEventFilter>
#include <QByteArray>

#include <cstdint>
#include <functional>
#include <map>

namespace tessarel::qt {

/// Watches for windows that come to the front of a window: those that are mapped or restacked among the
/// children of the root window.
///
/// VisibilityNotify would be simpler, but under a compositor no window counts as obscured. Events are
/// selected on Qt's connection as long as the object exists. Where Qt does not run on X11, nothing is
/// reported.
class StackingWatch : public QAbstractNativeEventFilter {
public:
    /// Calls `restacked` when a window other than `window` may have come to the front. Requires the
    /// application object. Takes a round trip on Qt's connection.
    StackingWatch(std::uint32_t window, std::function<void()> restacked);
    StackingWatch(const StackingWatch&) = delete;
    StackingWatch& operator=(const StackingWatch&) = delete;
    ~StackingWatch() override;

private:
    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;
    [[nodiscard]] bool isRestacked(const void* event);

    std::uint32_t m_window;
    std::function<void()> m_restacked;
    std::uint32_t m_root = 0;
    std::uint32_t m_otherEvents = 0; // the events that Qt selects on the root window
    /// The sibling below each window that was configured. Tells a restacked window from one that only moves.
    std::map<std::uint32_t, std::uint32_t> m_below;
};

} // namespace tessarel::qt
