// SPDX-License-Identifier: MIT

#include "platform/macos/windows/element_observer.h"

#include "platform/macos/objects/callback_edge.h"
#include "platform/macos/objects/conversions.h"
#include "platform/macos/windows/elements.h"

#include <chrono>
#include <map>
#include <memory>
#include <utility>

namespace tessarel::macos {

namespace {

using ElementHandler = std::function<void(const Element&)>;

/// One accessibility observer with one notification, registered from `listen` until the destructor.
class ElementObserver : public Subscription {
public:
    /// `element` must be the very object on which the caller has set a messaging timeout: the API keeps the
    /// timeout with the object and not with elements that are equal to it.
    ElementObserver(CfRef<AXObserverRef> observer, const Element& element, ObjcRef<NSString*> notification)
        : m_observer(std::move(observer)), m_element(element), m_notification(std::move(notification)) {}

    ~ElementObserver() override {
        @autoreleasepool {
            if (m_isListening)
                stop();
        }
    }

    /// Registers the notification and has it delivered to `handler` on the main run loop. Returns the error
    /// of the registration.
    [[nodiscard]] AXError listen(std::shared_ptr<const ElementHandler> handler) {
        AXObserverRef const observer = m_observer.get();
        const AXError error =
            AXObserverAddNotification(observer, axElement(m_element), cfString(m_notification), nullptr);
        if (error == kAXErrorSuccess) {
            handlers()[observer] = std::move(handler);
            // Unlike the default mode, the common modes also run during menu tracking and modal panels.
            CFRunLoopAddSource(CFRunLoopGetMain(), AXObserverGetRunLoopSource(observer),
                               kCFRunLoopCommonModes);
            m_isListening = true;
        }
        return error;
    }

    /// Callback of the observer; the element belongs to the caller.
    static void receive(AXObserverRef observer, AXUIElementRef element, CFStringRef /*notification*/,
                        void* /*context*/) {
        @autoreleasepool {
            const auto found = handlers().find(observer);
            if (found == handlers().end())
                return;
            const auto handler = found->second; // the call may destroy its own observer
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

    /// Returns the handlers by observer. They are not passed as context pointer, because a notification that
    /// is already queued when its observer is destroyed would then use freed memory; here it finds no entry.
    static std::map<AXObserverRef, std::shared_ptr<const ElementHandler>>& handlers() {
        static std::map<AXObserverRef, std::shared_ptr<const ElementHandler>> all;
        return all;
    }

    CfRef<AXObserverRef> m_observer;
    Element m_element;
    ObjcRef<NSString*> m_notification;
    bool m_isListening = false;
};

/// Creates and registers the observer of one `Observation`, as often as `begin` is called.
class Attempts {
public:
    explicit Attempts(Observation observation)
        : m_observation(std::move(observation)),
          m_handler(std::make_shared<const ElementHandler>(std::move(m_observation.handler))) {}

    [[nodiscard]] ProcessId pid() const { return m_observation.pid; }

    /// Tries once. On success stores the registered observer in `observer`; otherwise `observer` stays as it
    /// is.
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
constexpr std::chrono::milliseconds kFirstRetry{20}; // doubled for each further retry
/// A process that is merely not ready yet reports the error sooner than this.
constexpr std::chrono::milliseconds kHanging{100};

/// Repeats an observation until it succeeds; see `observeElementPatiently`.
class PatientObserver : public Subscription {
public:
    PatientObserver(WorkspacePort& workspace, MainQueuePort& queue, Observation observation)
        : m_workspace(workspace), m_queue(queue), m_attempts(std::move(observation)) {}

    /// Returns false when the process refuses; true when it is observed or will be retried.
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

    /// Schedules the next retry, unless all retries since the last activation have been used.
    void retryLater() {
        if (m_retries == kRetries)
            return;
        m_retry = m_queue.asyncAfter(kFirstRetry * (1 << m_retries++), [this] {
            if (!m_observer)
                attempt();
        });
    }

    void watchActivations() {
        m_activated = m_workspace.addObserver(ApplicationEvent::Activated,
                                              [this](const RunningApplication& application) {
                                                  if (application.processIdentifier != m_attempts.pid())
                                                      return;
                                                  m_retries = 0;
                                                  attempt();
                                              });
    }

    WorkspacePort& m_workspace;
    MainQueuePort& m_queue;
    Attempts m_attempts;
    int m_retries = 0;
    SubscriptionPtr m_observer;  ///< null until an attempt has succeeded
    SubscriptionPtr m_retry;     ///< the last retry that was scheduled
    SubscriptionPtr m_activated; ///< observes activations; null once an attempt has succeeded
};

} // namespace

SubscriptionPtr observeElement(Observation observation) {
    SubscriptionPtr observer;
    (void)Attempts(std::move(observation)).begin(observer);
    return observer;
}

SubscriptionPtr observeElementPatiently(WorkspacePort& workspace, MainQueuePort& queue,
                                        Observation observation) {
    auto observer = std::make_unique<PatientObserver>(workspace, queue, std::move(observation));
    return observer->start() ? std::move(observer) : nullptr;
}

} // namespace tessarel::macos
