#include "platform/macos/mouse.h"

#include "platform/macos/event_monitor.h"

#include <memory>
#include <utility>

namespace tessarel::macos {

namespace {

using MouseHandler = std::function<void(const MouseEvent&)>;

void deliver(MouseEventKind kind, NSEvent* event, const MouseHandler& handler) {
    const NSPoint location = [NSEvent mouseLocation];
    handler({kind, {location.x, location.y}, [event modifierFlags]});
}

/// Movements with the left button held, changes of the modifier keys included.
///
/// The keys are watched from each press to its release, not all the time: typing then wakes nobody, and a
/// monitor of keys that was made without the permission might stay deaf when it is given.
class DragMonitor : public Subscription {
public:
    explicit DragMonitor(MouseHandler handler)
        : m_handler(std::make_shared<const MouseHandler>(std::move(handler))) {}

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

    /// A window of another program may be dragged while one of ours has the keyboard.
    void watchModifiers() {
        m_modifiers =
            monitorOthersEvents(NSEventMaskFlagsChanged, [this](NSEvent* event) { deliverMovement(event); });
        m_ownModifiers = monitorOwnEvents(NSEventMaskFlagsChanged, [this](NSEvent* event) {
            deliverMovement(event);
            return false;
        });
    }

    void ignoreModifiers() {
        m_modifiers.reset();
        m_ownModifiers.reset();
    }

    void deliverMovement(NSEvent* event) {
        const auto handler = m_handler; // which may see the end of us
        deliver(MouseEventKind::LeftDragged, event, *handler);
    }

    std::shared_ptr<const MouseHandler> m_handler;
    SubscriptionPtr m_mouse;
    SubscriptionPtr m_modifiers;    ///< while another program has the keyboard
    SubscriptionPtr m_ownModifiers; ///< while we have
};

SubscriptionPtr monitorDrags(MouseHandler handler) {
    auto monitor = std::make_unique<DragMonitor>(std::move(handler));
    return monitor->start() ? std::move(monitor) : nullptr;
}

} // namespace

SubscriptionPtr MacMouse::addGlobalMonitor(MouseEventKind kind, MouseHandler handler) {
    if (kind == MouseEventKind::LeftDragged)
        return monitorDrags(std::move(handler));
    return monitorOthersEvents(
        kind == MouseEventKind::LeftDown ? NSEventMaskLeftMouseDown : NSEventMaskLeftMouseUp,
        [kind, handler = std::move(handler)](NSEvent* event) { deliver(kind, event, handler); });
}

} // namespace tessarel::macos
