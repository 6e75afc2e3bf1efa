// SPDX-License-Identifier: MIT

#pragma once

#include "model/signal.h"
#include "model/subscription.h"
#include "platform/wayland/mirror.h"
#include "ports/mouse_port.h"

#include <functional>
#include <map>

namespace tessarel::wayland {

/// The mouse as far as a Wayland compositor shows it to others: while the user moves a window.
///
/// The press is made up when the move starts, on the title bar of the window that moves: the pointer has left
/// the place of the press by then. Presses that do not move a window, and those that resize one, are never
/// seen.
class DragMouse : public MousePort {
public:
    /// Returns the modifier keys that are held.
    using Modifiers = std::function<ModifierFlags()>;

    /// `mirror`, and what `modifiers` uses, must outlive this object.
    DragMouse(Mirror& mirror, Modifiers modifiers);

    [[nodiscard]] SubscriptionPtr addGlobalMonitor(MouseEventKind kind,
                                                   std::function<void(const MouseEvent&)> handler) override;

private:
    void follow(const UserMove& move);
    void send(MouseEventKind kind, const Point& pointer);

    Mirror& m_mirror;
    Modifiers m_modifiers;
    bool m_isHeld = false;
    std::map<MouseEventKind, Signal<const MouseEvent&>> m_handlers;
    SubscriptionPtr m_moves;
};

} // namespace tessarel::wayland
