// SPDX-License-Identifier: MIT

#include "platform/macos/input/event_monitor.h"

#include "platform/macos/objects/callback_edge.h"
#include "platform/macos/objects/refs.h"

#include <memory>
#include <utility>

namespace tessarel::macos {

namespace {

/// Owns the system's monitor and its handler. The monitor's block refers to the handler weakly and locks it
/// for each call: a handler may destroy its own monitor, and no call follows the destruction.
template <class Handler>
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

SubscriptionPtr monitorOthersEvents(NSEventMask mask, std::function<void(NSEvent*)> handler) {
    using Watching = std::function<void(NSEvent*)>;
    @autoreleasepool {
        auto shared = std::make_shared<const Watching>(std::move(handler));
        const std::weak_ptr<const Watching> weak = shared;
        id const monitor =
            [NSEvent addGlobalMonitorForEventsMatchingMask:mask
                                                   handler:^(NSEvent* event) {
                                                     @autoreleasepool {
                                                         if (const auto present = weak.lock())
                                                             atCallbackEdge([&] { (*present)(event); });
                                                     }
                                                   }];
        return monitor ? std::make_unique<Monitor<Watching>>(monitor, std::move(shared)) : nullptr;
    }
}

SubscriptionPtr monitorOwnEvents(NSEventMask mask, std::function<bool(NSEvent*)> consumes) {
    using Consuming = std::function<bool(NSEvent*)>;
    @autoreleasepool {
        auto shared = std::make_shared<const Consuming>(std::move(consumes));
        const std::weak_ptr<const Consuming> weak = shared;
        id const monitor = [NSEvent
            addLocalMonitorForEventsMatchingMask:mask
                                         handler:^NSEvent*(NSEvent* event) {
                                           bool consumed = false;
                                           @autoreleasepool {
                                               if (const auto present = weak.lock()) {
                                                   // An event whose handler throws is dropped.
                                                   consumed = true;
                                                   atCallbackEdge([&] { consumed = (*present)(event); });
                                               }
                                           }
                                           return consumed ? nil : event;
                                         }];
        return monitor ? std::make_unique<Monitor<Consuming>>(monitor, std::move(shared)) : nullptr;
    }
}

} // namespace tessarel::macos
