// SPDX-License-Identifier: MIT

#include "platform/macos/objects/notification_observer.h"

#include "platform/macos/objects/callback_edge.h"

#include <utility>

@implementation TSLNotificationTarget

- (instancetype)initWithHandler:(std::function<void(NSNotification*)>)handler {
    if ((self = [super init]))
        m_handler = std::make_shared<const std::function<void(NSNotification*)>>(std::move(handler));
    return self;
}

- (void)receive:(NSNotification*)notification {
    @autoreleasepool {
        const auto handler = m_handler; // the call may release this target
        tessarel::macos::atCallbackEdge([&] { (*handler)(notification); });
    }
}

@end

namespace tessarel::macos {

NotificationObserver::NotificationObserver(NSNotificationCenter* center, NSString* name,
                                           std::function<void(NSNotification*)> handler)
    : m_center(ObjcRef<NSNotificationCenter*>::share(center)),
      m_target(ObjcRef<TSLNotificationTarget*>::adopt(
          [[TSLNotificationTarget alloc] initWithHandler:std::move(handler)])) {
    [center addObserver:m_target.get() selector:@selector(receive:) name:name object:nil];
}

NotificationObserver::~NotificationObserver() {
    @autoreleasepool {
        [m_center.get() removeObserver:m_target.get()];
    }
}

} // namespace tessarel::macos
