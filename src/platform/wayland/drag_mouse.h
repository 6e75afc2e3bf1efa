// SPDX-License-Identifier: MIT

#pragma once

#include "model/lifetime.h"
#include "model/signal.h"
#include "model/subscription.h"
#include "platform/wayland/mirror.h"
#include "ports/desktop/mouse_port.h"

#include <cstdint>
#include <functional>
#include <map>

namespace tessarel::wayland {

/// The modifier keys that the user holds while moving a window.
class DragKeys {
public:
    virtual ~DragKeys() = default;

    /// Returns the keys of the present move as last read.
    [[nodiscard]] virtual ModifierFlags held() const = 0;
    /// Reads the keys that were held when the move ended, and calls `done`, at once if they cannot be read.
    virtual void readAtEnd(std::function<void()> done) = 0;
};

/// The mouse as far as a Wayland compositor shows it to others: while the user moves a window.
///
/// The press is made up when the move starts, on the title bar of the window that moves: the pointer has left
/// the place of the press by then. Presses that do not move a window, and those that resize one, are never
/// seen.
class DragMouse : public MousePort {
public:
    /// `mirror` and `keys` must outlive this object.
    DragMouse(Mirror& mirror, DragKeys& keys);

    [[nodiscard]] SubscriptionPtr addGlobalMonitor(MouseEventKind kind,
                                                   std::function<void(const MouseEvent&)> handler) override;

    /// Reports a movement at the current pointer position if a window is being moved. Call it when a modifier
    /// key has gone down or up.
    void modifiersChanged();

private:
    void follow(const UserMove& move);
    void end(MouseEventKind kind);
    void send(MouseEventKind kind, const Point& pointer);

    Mirror& m_mirror;
    DragKeys& m_keys;
    bool m_isHeld = false;
    std::uint64_t m_moveNumber = 0;
    Point m_pointer; ///< of the last step
    std::map<MouseEventKind, Signal<const MouseEvent&>> m_handlers;
    Lifetime m_lifetime; // watched by reads of the keys
    SubscriptionPtr m_moves;
};

} // namespace tessarel::wayland
