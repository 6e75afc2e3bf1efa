// SPDX-License-Identifier: MIT

#include "platform/macos/input/local_keys.h"

#include "model/call_on_end.h"
#include "model/carbon_mods.h"
#include "model/signal.h"
#include "platform/macos/input/event_monitor.h"

#include <utility>

namespace tessarel::macos {

/// One event monitor for all handlers, so that they are called in the order in which they were added.
class MacLocalKeys::Monitor : public std::enable_shared_from_this<Monitor> {
public:
    Monitor() = default;
    Monitor(const Monitor&) = delete;
    Monitor& operator=(const Monitor&) = delete;
    ~Monitor() = default;

    /// Call it once a shared pointer owns this object.
    void start() {
        m_monitor = monitorOwnEvents(NSEventMaskKeyDown, [weak = weak_from_this()](NSEvent* event) {
            const auto self = weak.lock();
            return self && self->consumes(event);
        });
    }

    /// Adds `handler`. The returned subscription also keeps the monitor alive.
    [[nodiscard]] SubscriptionPtr add(Handler handler) {
        auto connection =
            m_handlers.connect([handler = std::move(handler)](const KeyDown& key, bool& isConsumed) {
                isConsumed = isConsumed || handler(key);
            });
        return callOnEnd(
            [monitor = shared_from_this(), connection = std::shared_ptr(std::move(connection))] {});
    }

    /// Calls the handlers in order until one returns true; returns whether one did.
    [[nodiscard]] bool ask(const KeyDown& key) {
        bool isConsumed = false;
        m_handlers.send(key, isConsumed);
        return isConsumed;
    }

private:
    [[nodiscard]] bool consumes(NSEvent* event) {
        // An event's flags also contain Caps Lock, the function key and device-dependent bits.
        return [event isARepeat] || ask({[event keyCode], [event modifierFlags] & kAllModifierFlags});
    }

    Signal<const KeyDown&, bool&> m_handlers;
    SubscriptionPtr m_monitor;
};

SubscriptionPtr MacLocalKeys::monitorKeyDown(Handler handler) {
    @autoreleasepool {
        auto monitor = m_monitor.lock();
        if (!monitor) {
            monitor = std::make_shared<Monitor>();
            monitor->start();
            m_monitor = monitor;
        }
        return monitor->add(std::move(handler));
    }
}

bool MacLocalKeys::takeHotKey(const KeyDown& key) {
    const auto monitor = m_monitor.lock();
    if (!monitor)
        return false;
    const auto frontmost = m_workspace.frontmostApplication();
    if (!frontmost || frontmost->processIdentifier != m_workspace.ownProcessIdentifier())
        return false;
    // While the user is recording a shortcut the hot key must not act, even if no handler consumes it.
    (void)monitor->ask(key);
    return true;
}

} // namespace tessarel::macos
