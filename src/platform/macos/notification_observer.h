#pragma once

#include "model/subscription.h"
#include "platform/macos/refs.h"

#import <Foundation/Foundation.h>
#include <functional>
#include <memory>

// For Objective-C++ sources only.

/// What a notification centre sends its messages to.
@interface TSLNotificationTarget : NSObject {
    std::shared_ptr<const std::function<void(NSNotification*)>> m_handler;
}
- (instancetype)initWithHandler:(std::function<void(NSNotification*)>)handler;
- (void)receive:(NSNotification*)notification;
@end

namespace tessarel::macos {

/// Calls a handler with every notification of one name, for as long as it lives.
class NotificationObserver : public Subscription {
public:
    NotificationObserver(NSNotificationCenter* center, NSString* name,
                         std::function<void(NSNotification*)> handler);
    ~NotificationObserver() override;

private:
    ObjcRef<NSNotificationCenter*> m_center;
    ObjcRef<TSLNotificationTarget*> m_target;
};

} // namespace tessarel::macos
