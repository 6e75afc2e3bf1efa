// SPDX-License-Identifier: MIT

#include "platform/macos/shell/reopen_requests.h"

#include "platform/macos/objects/callback_edge.h"
#include "platform/macos/objects/notification_observer.h"

#import <AppKit/AppKit.h>
#include <ApplicationServices/ApplicationServices.h>
#include <memory>
#include <utility>

/// Target of the Apple event.
@interface TSLReopenTarget : NSObject {
    std::shared_ptr<const std::function<void()>> m_reopened;
}
- (instancetype)initWithReopened:(std::function<void()>)reopened;
- (void)handleEvent:(NSAppleEventDescriptor*)event withReplyEvent:(NSAppleEventDescriptor*)reply;
@end

@implementation TSLReopenTarget

- (instancetype)initWithReopened:(std::function<void()>)reopened {
    if ((self = [super init]))
        m_reopened = std::make_shared<const std::function<void()>>(std::move(reopened));
    return self;
}

- (void)handleEvent:(NSAppleEventDescriptor*)event withReplyEvent:(NSAppleEventDescriptor*)reply {
    (void)event;
    (void)reply;
    @autoreleasepool {
        const auto reopened = m_reopened; // the call may release this target
        tessarel::macos::atCallbackEdge([&] { (*reopened)(); });
    }
}

@end

namespace tessarel::macos {

namespace {

/// Handler of the Apple event. The application's delegate cannot be used: it is Qt's, and Qt reports the
/// event in the same way as an activation of the application.
class ReopenRequests : public Subscription {
public:
    explicit ReopenRequests(std::function<void()> reopened)
        : m_target(ObjcRef<TSLReopenTarget*>::adopt(
              [[TSLReopenTarget alloc] initWithReopened:std::move(reopened)])),
          m_launched([NSNotificationCenter defaultCenter], NSApplicationDidFinishLaunchingNotification,
                     [this](NSNotification*) { takeOver(); }) {
        takeOver();
    }
    ReopenRequests(const ReopenRequests&) = delete;
    ReopenRequests& operator=(const ReopenRequests&) = delete;
    ~ReopenRequests() override {
        @autoreleasepool {
            [[NSAppleEventManager sharedAppleEventManager]
                removeEventHandlerForEventClass:kCoreEventClass
                                     andEventID:kAEReopenApplication];
        }
    }

private:
    /// Sets the handler; called again when the application has finished launching, because AppKit installs
    /// its own handlers in the course of the launch.
    void takeOver() {
        [[NSAppleEventManager sharedAppleEventManager] setEventHandler:m_target.get()
                                                           andSelector:@selector(handleEvent:withReplyEvent:)
                                                         forEventClass:kCoreEventClass
                                                            andEventID:kAEReopenApplication];
    }

    ObjcRef<TSLReopenTarget*> m_target; // NSAppleEventManager does not retain it
    NotificationObserver m_launched;
};

} // namespace

SubscriptionPtr onReopenRequested(std::function<void()> reopened) {
    @autoreleasepool {
        return std::make_unique<ReopenRequests>(std::move(reopened));
    }
}

} // namespace tessarel::macos
