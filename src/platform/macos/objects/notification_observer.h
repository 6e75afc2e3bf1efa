// SPDX-License-Identifier: MIT

#pragma once

#include "model/subscription.h"
#include "platform/macos/objects/refs.h"

#import <Foundation/Foundation.h>
#include <functional>
#include <memory>

// For Objective-C++ sources only.

/// Target of a notification centre's messages.
@interface TSLNotificationTarget : NSObject {
    std::shared_ptr<const std::function<void(NSNotification*)>> m_handler;
}
- (instancetype)initWithHandler:(std::function<void(NSNotification*)>)handler;
- (void)receive:(NSNotification*)notification;
@end

namespace tessarel::macos {

/// Observer of one kind of notification, registered from the constructor to the destructor.
class NotificationObserver : public Subscription {
public:
    /// Calls `handler` with every notification called `name` that `center` delivers, whatever its object.
    /// `handler` may destroy the observer.
    NotificationObserver(NSNotificationCenter* center, NSString* name,
                         std::function<void(NSNotification*)> handler);
    ~NotificationObserver() override;

private:
    ObjcRef<NSNotificationCenter*> m_center;
    ObjcRef<TSLNotificationTarget*> m_target;
};

} // namespace tessarel::macos
