// SPDX-License-Identifier: MIT

#include "platform/sim/sim_mouse.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace tessarel::sim {

SubscriptionPtr SimMouse::addGlobalMonitor(MouseEventKind kind,
                                           std::function<void(const MouseEvent&)> handler) {
    if (m_refused.contains(kind))
        return nullptr;
    return m_monitors[kind].connect(std::move(handler));
}

std::vector<MouseEventKind> SimMouse::monitored() const {
    std::vector<MouseEventKind> kinds;
    for (const auto& [kind, signal] : m_monitors)
        kinds.insert(kinds.end(), signal.connections(), kind);
    return kinds;
}

void SimMouse::hold(std::uint64_t modifierFlags) {
    if (std::exchange(m_modifierFlags, modifierFlags) != modifierFlags && m_isDown && m_isReported)
        report(MouseEventKind::LeftDragged);
}

void SimMouse::moveTo(const Point& axPoint) {
    m_pointer = axPoint;
    moveHeldWindow();
    if (!m_isReported)
        return;
    if (m_isDown)
        return report(MouseEventKind::LeftDragged);
    // The release was lost: it is reported with this movement.
    m_isReported = false;
    report(MouseEventKind::LeftUp);
}

void SimMouse::moveHeldWindow() {
    SimWindow* const window = m_held ? m_state.window(m_held->window) : nullptr;
    if (!window)
        return;
    Rect& axFrame = window->axFrame;
    // At the top edge the bottom edge stays, otherwise the window moves.
    const bool isResize = m_held->grip.y < kTopEdge;
    const double lowest = isResize ? axFrame.maxY() - 1 : std::numeric_limits<double>::max();
    const double top = std::min(m_pointer.y - m_held->grip.y, lowest);
    if (isResize)
        axFrame.height = axFrame.maxY() - top;
    else
        axFrame.x = m_pointer.x - m_held->grip.x;
    axFrame.y = top;
    window->settledAt = m_state.clock.now();
}

void SimMouse::press() {
    const SimWindow* const window = m_state.windowAt(m_pointer);
    m_isDown = true;
    m_held.reset();
    const bool isByItsTop = window && m_pointer.y - window->axFrame.minY() <= kTitleBar;
    if (isByItsTop && !window->fullScreen)
        m_held = {window->id,
                  window->axFrame,
                  {m_pointer.x - window->axFrame.minX(), m_pointer.y - window->axFrame.minY()}};
    m_isReported = !(window && window->pid == SimState::kOwnPid);
    if (m_isReported)
        report(MouseEventKind::LeftDown);
}

void SimMouse::cancel() {
    if (m_isDown && m_isReported)
        report(MouseEventKind::Cancelled);
    SimWindow* const window = m_held ? m_state.window(m_held->window) : nullptr;
    if (window)
        window->axFrame = m_held->start;
    m_held.reset();
}

void SimMouse::release() {
    m_isDown = false;
    m_held.reset();
    if (std::exchange(m_isReported, false))
        report(MouseEventKind::LeftUp);
}

void SimMouse::loseRelease() {
    m_isDown = false;
    m_held.reset();
}

void SimMouse::report(MouseEventKind kind) {
    // From accessibility coordinates (y down) to screen coordinates (y up).
    const double primaryHeight = m_state.screens.empty() ? 0 : m_state.screens.front().frame.absHeight();
    const MouseEvent event{kind, {m_pointer.x, primaryHeight - m_pointer.y}, m_modifierFlags};
    m_monitors[kind].send(event);
}

} // namespace tessarel::sim
