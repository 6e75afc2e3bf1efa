// SPDX-License-Identifier: MIT

#include "platform/wayland/drag_mouse.h"

#include "platform/wayland/coordinates.h"

#include <algorithm>
#include <utility>

namespace tessarel::wayland {

namespace {

/// Returns the point of the window's title bar that is closest to the pointer.
Point onTitleBar(const UserMove& move) {
    constexpr double kBorder = 10; // stays clear of the borders, which resize the window
    constexpr double kTitleBar = 20;
    const Rect& frame = move.frame;
    const double right = std::max(frame.maxX() - kBorder, frame.minX() + kBorder);
    return {std::clamp(move.pointer.x, frame.minX() + kBorder, right),
            std::clamp(move.pointer.y, frame.minY() + kBorder, frame.minY() + kTitleBar)};
}

} // namespace

DragMouse::DragMouse(Mirror& mirror, DragKeys& keys)
    : m_mirror(mirror), m_keys(keys), m_moves(mirror.onMove([this](const UserMove& move) { follow(move); })) {
}

SubscriptionPtr DragMouse::addGlobalMonitor(MouseEventKind kind,
                                            std::function<void(const MouseEvent&)> handler) {
    return m_handlers[kind].connect(std::move(handler));
}

void DragMouse::modifiersChanged() {
    if (m_isHeld)
        send(MouseEventKind::LeftDragged, m_pointer);
}

void DragMouse::follow(const UserMove& move) {
    m_pointer = move.pointer;
    switch (move.phase) {
    case UserMove::Phase::Started:
        ++m_moveNumber;
        m_isHeld = move.isMove;
        if (m_isHeld)
            send(MouseEventKind::LeftDown, onTitleBar(move));
        return;
    case UserMove::Phase::Stepped:
        if (m_isHeld)
            send(MouseEventKind::LeftDragged, move.pointer);
        return;
    case UserMove::Phase::Cancelled:
        end(MouseEventKind::Cancelled);
        return;
    case UserMove::Phase::Finished:
        m_keys.readAtEnd([this, number = m_moveNumber, alive = m_lifetime.watch()] {
            if (!alive.expired() && number == m_moveNumber)
                end(MouseEventKind::LeftUp);
        });
        return;
    }
}

void DragMouse::end(MouseEventKind kind) {
    if (std::exchange(m_isHeld, false))
        send(kind, m_pointer);
}

void DragMouse::send(MouseEventKind kind, const Point& pointer) {
    m_handlers[kind].send({kind, screenFromCompositor(pointer, m_mirror.primary()), m_keys.held()});
}

} // namespace tessarel::wayland
