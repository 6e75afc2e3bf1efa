#include "platform/macos/element_observer.h"

#include "platform/macos/callback_edge.h"
#include "platform/macos/conversions.h"
#include "platform/macos/elements.h"

#include <chrono>
#include <map>
#include <memory>
#include <utility>

namespace tessarel::macos {

namespace {

using ElementHandler = std::function<void(const Element&)>;

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

    [[nodiscard]] AXError listen(std::shared_ptr<const ElementHandler> handler) {
        AXObserverRef const observer = m_observer.get();
        const AXError error =
            AXObserverAddNotification(observer, axElement(m_element), cfString(m_notification), nullptr);
        if (error != kAXErrorSuccess)
            return error;
        handlers()[observer] = std::move(handler);
        // The common modes go on while a menu of ours is open or an alert stands.
        CFRunLoopAddSource(CFRunLoopGetMain(), AXObserverGetRunLoopSource(observer), kCFRunLoopCommonModes);
        m_isListening = true;
        return error;
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
    void stop() {
        AXObserverRef const observer = m_observer.get();
        handlers().erase(observer);
        CFRunLoopRemoveSource(CFRunLoopGetMain(), AXObserverGetRunLoopSource(observer),
                              kCFRunLoopCommonModes);
        AXObserverRemoveNotification(observer, axElement(m_element), cfString(m_notification));
    }

    /// A table instead of the context pointer: a notification that is under way when its observer ends has to
    /// find nothing, not what was there.
    static std::map<AXObserverRef, std::shared_ptr<const ElementHandler>>& handlers() {
        static std::map<AXObserverRef, std::shared_ptr<const ElementHandler>> all;
        return all;
    }

    CfRef<AXObserverRef> m_observer;
    Element m_element;
    ObjcRef<NSString*> m_notification;
    bool m_isListening = false;
};

/// An observation that may be begun more than once.
class Attempts {
public:
    explicit Attempts(Observation observation)
        : m_observation(std::move(observation)),
          m_handler(std::make_shared<const ElementHandler>(std::move(m_observation.handler))) {}

    [[nodiscard]] ProcessId pid() const { return m_observation.pid; }

    /// Leaves the observer of a success in `observer`.
    [[nodiscard]] AXError begin(SubscriptionPtr& observer) const {
        @autoreleasepool {
            AXObserverRef created = nullptr;
            const AXError error = AXObserverCreate(m_observation.pid, ElementObserver::receive, &created);
            if (error != kAXErrorSuccess || !created)
                return error != kAXErrorSuccess ? error : kAXErrorFailure;
            auto listener =
                std::make_unique<ElementObserver>(CfRef<AXObserverRef>::adopt(created), m_observation.element,
                                                  nsString(m_observation.notification));
            const AXError refusal = listener->listen(m_handler);
            if (refusal == kAXErrorSuccess)
                observer = std::move(listener);
            return refusal;
        }
    }

private:
    Observation m_observation;
    std::shared_ptr<const ElementHandler> m_handler;
};

constexpr int kRetries = 5;
constexpr std::chrono::milliseconds kFirstRetry{20}; // each of the others comes after twice the time
/// Longer than a process that is merely not ready takes to say so.
constexpr std::chrono::milliseconds kHanging{100};

class PatientObserver : public std::enable_shared_from_this<PatientObserver> {
public:
    PatientObserver(WorkspacePort& workspace, MainQueuePort& queue, Observation observation)
        : m_workspace(workspace), m_queue(queue), m_attempts(std::move(observation)) {}

    /// False when the process refuses.
    [[nodiscard]] bool start() {
        const AXError error = attempt();
        if (error == kAXErrorCannotComplete)
            watchActivations();
        return error == kAXErrorSuccess || error == kAXErrorCannotComplete;
    }

private:
    AXError attempt() {
        const auto before = m_queue.now();
        const AXError error = m_attempts.begin(m_observer);
        if (error == kAXErrorSuccess)
            m_activated.reset();
        else if (error == kAXErrorCannotComplete && m_queue.now() - before < kHanging)
            retryLater();
        return error;
    }

    void retryLater() {
        if (m_retries == kRetries)
            return;
        m_queue.asyncAfter(kFirstRetry * (1 << m_retries++), [weak = weak_from_this()] {
            const auto self = weak.lock();
            if (self && !self->m_observer)
                self->attempt();
        });
    }

    void watchActivations() {
        m_activated = m_workspace.addObserver(ApplicationEvent::Activated,
                                              [this](const RunningApplication& application) {
                                                  if (application.processIdentifier != m_attempts.pid())
                                                      return;
                                                  const auto self = shared_from_this();
                                                  m_retries = 0;
                                                  attempt();
                                              });
    }

    WorkspacePort& m_workspace;
    MainQueuePort& m_queue;
    Attempts m_attempts;
    int m_retries = 0;
    SubscriptionPtr m_observer;  ///< once it has been possible
    SubscriptionPtr m_activated; ///< until then
};

} // namespace

SubscriptionPtr observeElement(Observation observation) {
    SubscriptionPtr observer;
    (void)Attempts(std::move(observation)).begin(observer);
    return observer;
}

SubscriptionPtr observeElementPatiently(WorkspacePort& workspace, MainQueuePort& queue,
                                        Observation observation) {
    struct End : Subscription {
        std::shared_ptr<PatientObserver> observer;
    };
    auto end = std::make_unique<End>();
    end->observer = std::make_shared<PatientObserver>(workspace, queue, std::move(observation));
    return end->observer->start() ? std::move(end) : nullptr;
}

} // namespace tessarel::macos
