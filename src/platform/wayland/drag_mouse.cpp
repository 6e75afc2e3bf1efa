#include "platform/wayland/drag_mouse.h"

#include "platform/wayland/coordinates.h"

#include <utility>

namespace tessarel::wayland {

DragMouse::DragMouse(Mirror& mirror, Modifiers modifiers)
    : m_mirror(mirror), m_modifiers(std::move(modifiers)),
      m_moves(mirror.onMove([this](const UserMove& move) { follow(move); })) {}

SubscriptionPtr DragMouse::addGlobalMonitor(MouseEventKind kind,
                                            std::function<void(const MouseEvent&)> handler) {
    return m_handlers[kind].connect(std::move(handler));
}

void DragMouse::follow(const UserMove& move) {
    switch (move.phase) {
    case UserMove::Phase::Started:
        m_isHeld = move.isMove;
        if (m_isHeld)
            send(MouseEventKind::LeftDown, move);
        return;
    case UserMove::Phase::Stepped:
        if (m_isHeld)
            send(MouseEventKind::LeftDragged, move);
        return;
    case UserMove::Phase::Finished:
        if (std::exchange(m_isHeld, false))
            send(MouseEventKind::LeftUp, move);
        return;
    }
}

void DragMouse::send(MouseEventKind kind, const UserMove& move) {
    m_handlers[kind].send({kind, screenFromCompositor(move.pointer, m_mirror.primary()), m_modifiers()});
}

} // namespace tessarel::wayland
