// SPDX-License-Identifier: MIT

#include "platform/macos/input/mouse.h"

#include "platform/macos/input/event_monitor.h"

#include <memory>
#include <utility>

namespace tessarel::macos {

namespace {

using MouseHandler = std::function<void(const MouseEvent&)>;

/// Reports `event` at the current location of the pointer, in screen coordinates. `locationInWindow` would be
/// relative to a window in the case of a local monitor.
void deliver(MouseEventKind kind, NSEvent* event, const MouseHandler& handler) {
    const NSPoint location = [NSEvent mouseLocation];
    handler({kind, {location.x, location.y}, [event modifierFlags]});
}

/// Reports movements while the left button is held, and changes of the modifier keys as movements.
///
/// The modifier keys are monitored only from a press to its release. Otherwise typing would wake this
/// process, and a key monitor that was added before the user granted the permission might never receive
/// anything.
class DragMonitor : public Subscription {
public:
    explicit DragMonitor(MouseHandler handler)
        : m_handler(std::make_shared<const MouseHandler>(std::move(handler))) {}

    /// Returns false when the system refuses the monitor.
    [[nodiscard]] bool start() {
        m_mouse = monitorOthersEvents(NSEventMaskLeftMouseDown | NSEventMaskLeftMouseDragged |
                                          NSEventMaskLeftMouseUp,
                                      [this](NSEvent* event) { receive(event); });
        return m_mouse != nullptr;
    }

private:
    void receive(NSEvent* event) {
        if ([event type] == NSEventTypeLeftMouseDown)
            watchModifiers();
        else if ([event type] == NSEventTypeLeftMouseUp)
            ignoreModifiers();
        else
            deliverMovement(event);
    }

    /// Adds a global and a local monitor: one of our windows may be the key window while the user drags a
    /// window of another application, and key events go to the active application.
    void watchModifiers() {
        m_modifiers =
            monitorOthersEvents(NSEventMaskFlagsChanged, [this](NSEvent* event) { deliverMovement(event); });
        m_ownModifiers = monitorOwnEvents(NSEventMaskFlagsChanged, [this](NSEvent* event) {
            deliverMovement(event);
            return false; // the key window receives the event as well
        });
    }

    void ignoreModifiers() {
        m_modifiers.reset();
        m_ownModifiers.reset();
    }

    void deliverMovement(NSEvent* event) {
        const auto handler = m_handler; // the call may destroy this monitor
        deliver(MouseEventKind::LeftDragged, event, *handler);
    }

    std::shared_ptr<const MouseHandler> m_handler;
    SubscriptionPtr m_mouse;
    SubscriptionPtr m_modifiers;    ///< while another application has the keyboard focus
    SubscriptionPtr m_ownModifiers; ///< while this application has the keyboard focus
};

/// Returns null when the system refuses the monitor.
SubscriptionPtr monitorDrags(MouseHandler handler) {
    auto monitor = std::make_unique<DragMonitor>(std::move(handler));
    return monitor->start() ? std::move(monitor) : nullptr;
}

} // namespace

SubscriptionPtr MacMouse::addGlobalMonitor(MouseEventKind kind, MouseHandler handler) {
    if (kind == MouseEventKind::Cancelled)
        return nullptr; // Escape does not take a dragged window back
    if (kind == MouseEventKind::LeftDragged)
        return monitorDrags(std::move(handler));
    return monitorOthersEvents(
        kind == MouseEventKind::LeftDown ? NSEventMaskLeftMouseDown : NSEventMaskLeftMouseUp,
        [kind, handler = std::move(handler)](NSEvent* event) { deliver(kind, event, handler); });
}

} // namespace tessarel::macos
