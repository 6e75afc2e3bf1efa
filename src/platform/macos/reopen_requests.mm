#include "platform/macos/reopen_requests.h"

#include "platform/macos/callback_edge.h"
#include "platform/macos/notification_observer.h"

#import <AppKit/AppKit.h>
#include <ApplicationServices/ApplicationServices.h>
#include <memory>
#include <utility>

/// What the system sends the event to.
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
        const auto reopened = m_reopened; // which may see the end of us
        tessarel::macos::atCallbackEdge([&] { (*reopened)(); });
    }
}

@end

namespace tessarel::macos {

namespace {

/// Takes the event itself: the application's delegate, which it would reach, is Qt's, and Qt makes no
/// difference between it and the program's coming to the front.
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
    /// Once more when the application has finished launching: on the way there it sets its own handlers.
    void takeOver() {
        [[NSAppleEventManager sharedAppleEventManager] setEventHandler:m_target.get()
                                                           andSelector:@selector(handleEvent:withReplyEvent:)
                                                         forEventClass:kCoreEventClass
                                                            andEventID:kAEReopenApplication];
    }

    ObjcRef<TSLReopenTarget*> m_target; // which the manager does not keep
    NotificationObserver m_launched;
};

} // namespace

SubscriptionPtr onReopenRequested(std::function<void()> reopened) {
    @autoreleasepool {
        return std::make_unique<ReopenRequests>(std::move(reopened));
    }
}

} // namespace tessarel::macos
