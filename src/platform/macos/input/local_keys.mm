// SPDX-License-Identifier: MIT

#include "platform/macos/input/local_keys.h"

#include "model/call_on_end.h"
#include "model/carbon_mods.h"
#include "model/signal.h"
#include "platform/macos/input/event_monitor.h"

#include <utility>

namespace tessarel::macos {

/// One event monitor for all handlers, so that they are called in the order in which they were added. It
/// exists while there is a handler, and then until the key that the last one has consumed is released.
class MacLocalKeys::Monitor : public std::enable_shared_from_this<Monitor> {
public:
    Monitor() = default;
    Monitor(const Monitor&) = delete;
    Monitor& operator=(const Monitor&) = delete;
    ~Monitor() = default;

    /// Adds `handler`. The returned subscription also keeps this object alive.
    [[nodiscard]] SubscriptionPtr add(Handler handler) {
        if (!m_monitor)
            start();
        auto connection =
            m_handlers.connect([handler = std::move(handler)](const KeyDown& key, bool& isConsumed) {
                isConsumed = isConsumed || handler(key);
            });
        return callOnEnd(
            [self = shared_from_this(), connection = std::shared_ptr(std::move(connection))]() mutable {
                connection.reset();
                self->stopIfUnused();
            });
    }

    [[nodiscard]] bool hasHandlers() const { return m_handlers.connections() != 0; }

    /// Calls the handlers in order until one returns true; returns whether one did.
    [[nodiscard]] bool ask(const KeyDown& key) {
        bool isConsumed = false;
        m_isKeyHeld = true; // a handler may destroy its subscription before it consumes the key
        m_handlers.send(key, isConsumed);
        m_isKeyHeld = isConsumed;
        stopIfUnused();
        return isConsumed;
    }

private:
    void start() {
        m_monitor = monitorOwnEvents(NSEventMaskKeyDown, [weak = weak_from_this()](NSEvent* event) {
            const auto self = weak.lock();
            return self && self->consumes(event);
        });
    }

    /// The release itself is not awaited, because the system does not report it for every combination: the
    /// next press that is no repeat follows it.
    void stopIfUnused() {
        if (!m_isKeyHeld && !hasHandlers())
            m_monitor.reset();
    }

    [[nodiscard]] bool consumes(NSEvent* event) {
        // An event's flags also contain Caps Lock, the function key and device-dependent bits.
        return [event isARepeat] || ask({[event keyCode], [event modifierFlags] & kAllModifierFlags});
    }

    Signal<const KeyDown&, bool&> m_handlers;
    bool m_isKeyHeld = false; ///< a handler has consumed the last key press
    SubscriptionPtr m_monitor;
};

MacLocalKeys::MacLocalKeys(MacWorkspace& workspace)
    : m_workspace(workspace), m_monitor(std::make_shared<Monitor>()) {}

SubscriptionPtr MacLocalKeys::monitorKeyDown(Handler handler) {
    @autoreleasepool {
        return m_monitor->add(std::move(handler));
    }
}

bool MacLocalKeys::takeHotKey(const KeyDown& key) {
    if (!m_monitor->hasHandlers())
        return false;
    const auto frontmost = m_workspace.frontmostApplication();
    if (!frontmost || frontmost->processIdentifier != m_workspace.ownProcessIdentifier())
        return false;
    // While the user is recording a shortcut the hot key must not act, even if no handler consumes it.
    (void)m_monitor->ask(key);
    return true;
}

} // namespace tessarel::macos
