#include "platform/macos/mouse.h"

#include "platform/macos/callback_edge.h"
#include "platform/macos/refs.h"

#import <AppKit/AppKit.h>
#include <memory>
#include <utility>

namespace tessarel::macos {

namespace {

using Handler = std::function<void(const MouseEvent&)>;

NSEventMask maskOf(MouseEventKind kind) {
    switch (kind) {
    case MouseEventKind::LeftDown:
        return NSEventMaskLeftMouseDown;
    case MouseEventKind::LeftDragged:
        return NSEventMaskLeftMouseDragged;
    case MouseEventKind::LeftUp:
        return NSEventMaskLeftMouseUp;
    }
    return 0;
}

void deliver(MouseEventKind kind, NSEvent* event, const Handler& handler) {
    const NSPoint location = [NSEvent mouseLocation];
    handler({kind, {location.x, location.y}, [event modifierFlags]});
}

/// Removes the system's monitor; the handler goes with it, unless it is being called.
struct Monitor : Subscription {
    Monitor(id systemMonitor, std::shared_ptr<const Handler> function)
        : monitor(ObjcRef<id>::share(systemMonitor)), handler(std::move(function)) {}
    ~Monitor() override {
        @autoreleasepool {
            [NSEvent removeMonitor:monitor.get()];
        }
    }

    ObjcRef<id> monitor;
    std::shared_ptr<const Handler> handler;
};

} // namespace

SubscriptionPtr MacMouse::addGlobalMonitor(MouseEventKind kind, Handler handler) {
    @autoreleasepool {
        auto shared = std::make_shared<const Handler>(std::move(handler));
        const std::weak_ptr<const Handler> weak = shared;
        id const monitor = [NSEvent
            addGlobalMonitorForEventsMatchingMask:maskOf(kind)
                                          handler:^(NSEvent* event) {
                                            @autoreleasepool {
                                                if (const auto present = weak.lock())
                                                    atCallbackEdge([&] { deliver(kind, event, *present); });
                                            }
                                          }];
        return monitor ? std::make_unique<Monitor>(monitor, std::move(shared)) : nullptr;
    }
}

} // namespace tessarel::macos
