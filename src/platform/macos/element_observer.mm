#include "platform/macos/element_observer.h"

#include "platform/macos/callback_edge.h"
#include "platform/macos/conversions.h"
#include "platform/macos/elements.h"

#include <map>
#include <utility>

namespace tessarel::macos {

namespace {

class ElementObserver : public Subscription {
public:
    /// Both references are held; the element is the very one on which the caller has set a time limit.
    ElementObserver(CfRef<AXObserverRef> observer, const Element& element, ObjcRef<NSString*> notification)
        : m_observer(std::move(observer)), m_element(element), m_notification(std::move(notification)) {}

    ~ElementObserver() override {
        @autoreleasepool {
            if (m_isListening)
                stop();
        }
    }

    [[nodiscard]] bool listen(std::function<void(const Element&)> handler) {
        AXObserverRef const observer = m_observer.get();
        if (AXObserverAddNotification(observer, axElement(m_element), cfString(m_notification), nullptr) !=
            kAXErrorSuccess)
            return false;
        handlers()[observer] = std::make_shared<const Handler>(std::move(handler));
        // The common modes go on while a menu of ours is open or an alert stands.
        CFRunLoopAddSource(CFRunLoopGetMain(), AXObserverGetRunLoopSource(observer), kCFRunLoopCommonModes);
        m_isListening = true;
        return true;
    }

    static void receive(AXObserverRef observer, AXUIElementRef element, CFStringRef /*notification*/,
                        void* /*context*/) {
        @autoreleasepool {
            const auto found = handlers().find(observer);
            if (found == handlers().end())
                return;
            const auto handler = found->second; // which may end its observer
            atCallbackEdge([&] { (*handler)(elementFrom(CfRef<AXUIElementRef>::share(element))); });
        }
    }

private:
    using Handler = std::function<void(const Element&)>;

    void stop() {
        AXObserverRef const observer = m_observer.get();
        handlers().erase(observer);
        CFRunLoopRemoveSource(CFRunLoopGetMain(), AXObserverGetRunLoopSource(observer),
                              kCFRunLoopCommonModes);
        AXObserverRemoveNotification(observer, axElement(m_element), cfString(m_notification));
    }

    /// A table instead of the context pointer: a notification that is under way when its observer ends has to
    /// find nothing, not what was there.
    static std::map<AXObserverRef, std::shared_ptr<const Handler>>& handlers() {
        static std::map<AXObserverRef, std::shared_ptr<const Handler>> all;
        return all;
    }

    CfRef<AXObserverRef> m_observer;
    Element m_element;
    ObjcRef<NSString*> m_notification;
    bool m_isListening = false;
};

} // namespace

SubscriptionPtr observeElement(ProcessId pid, const Element& element, std::string_view notification,
                               std::function<void(const Element&)> handler) {
    @autoreleasepool {
        AXObserverRef created = nullptr;
        if (AXObserverCreate(pid, ElementObserver::receive, &created) != kAXErrorSuccess || !created)
            return nullptr;
        auto observer = std::make_unique<ElementObserver>(CfRef<AXObserverRef>::adopt(created), element,
                                                          nsString(notification));
        return observer->listen(std::move(handler)) ? std::move(observer) : nullptr;
    }
}

} // namespace tessarel::macos
