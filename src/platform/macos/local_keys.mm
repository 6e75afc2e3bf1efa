#include "platform/macos/local_keys.h"

#include "platform/macos/event_monitor.h"

#include <utility>

namespace tessarel::macos {

namespace {

constexpr ModifierFlags kModifiers = kShiftFlag | kControlFlag | kOptionFlag | kCommandFlag;

} // namespace

/// The system's monitor, one for all handlers, so that they are asked in their own order.
class MacLocalKeys::Monitor : public std::enable_shared_from_this<Monitor> {
public:
    Monitor() = default;
    Monitor(const Monitor&) = delete;
    Monitor& operator=(const Monitor&) = delete;
    ~Monitor() = default;

    void start() {
        m_monitor = monitorOwnEvents(NSEventMaskKeyDown, [weak = weak_from_this()](NSEvent* event) {
            const auto self = weak.lock();
            return self && self->consumes(event);
        });
    }

    [[nodiscard]] SubscriptionPtr add(Handler handler);

    [[nodiscard]] bool ask(const KeyDown& key) {
        for (const auto& weak : m_handlers.present()) {
            if (const auto handler = weak.lock(); handler && (*handler)(key))
                return true;
        }
        return false;
    }

private:
    [[nodiscard]] bool consumes(NSEvent* event) {
        return [event isARepeat] || ask({[event keyCode], [event modifierFlags] & kModifiers});
    }

    Callbacks<bool(const KeyDown&)> m_handlers;
    SubscriptionPtr m_monitor;
};

SubscriptionPtr MacLocalKeys::Monitor::add(Handler handler) {
    struct Registration : Subscription {
        std::shared_ptr<Monitor> monitor;
        SubscriptionPtr handler;
    };
    auto registration = std::make_unique<Registration>();
    registration->monitor = shared_from_this();
    registration->handler = m_handlers.add(std::move(handler));
    return registration;
}

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
    (void)monitor->ask(key); // not the hot key's turn even if nobody wants it
    return true;
}

} // namespace tessarel::macos
