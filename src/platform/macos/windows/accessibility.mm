// SPDX-License-Identifier: MIT

#include "platform/macos/windows/accessibility.h"

#include "platform/macos/objects/conversions.h"
#include "platform/macos/windows/element_observer.h"
#include "platform/macos/windows/elements.h"

#include <utility>

namespace tessarel::macos {

namespace {

constexpr std::string_view kWindowCreated = "AXWindowCreated";
constexpr std::string_view kElementDestroyed = "AXUIElementDestroyed";

/// Subscription to the close of a window. The window's own notification and the termination of its process
/// both report the close; the handler is called for the first of them only.
struct WindowEnd : Subscription {
    explicit WindowEnd(std::function<void()> function)
        : closed(std::make_shared<std::function<void()>>(std::move(function))) {}

    /// Calls the handler unless it has been called. It is moved out first, so that it stays alive when it
    /// destroys its own subscription.
    static void tell(const std::shared_ptr<std::function<void()>>& closed) {
        if (const auto once = std::exchange(*closed, nullptr))
            once();
    }

    std::shared_ptr<std::function<void()>> closed; // empty once it has been called
    SubscriptionPtr destroyed;
    SubscriptionPtr terminated;
};

/// Returns true for the attributes whose reads and writes pass through `LateFrames`.
bool isOfFrame(std::string_view attribute) {
    return attribute == attribute::kPosition || attribute == attribute::kSize;
}

} // namespace

MacAccessibility::MacAccessibility(MacWorkspace& workspace, MainQueuePort& queue, LateFrames::Wait wait)
    : m_workspace(workspace), m_queue(queue), m_lateFrames(readFrame, std::move(wait)) {}

Element MacAccessibility::application(ProcessId pid) {
    @autoreleasepool {
        return elementFrom(CfRef<AXUIElementRef>::adopt(AXUIElementCreateApplication(pid)));
    }
}

Element MacAccessibility::systemWide() {
    @autoreleasepool {
        return elementFrom(CfRef<AXUIElementRef>::adopt(AXUIElementCreateSystemWide()));
    }
}

void MacAccessibility::setMessagingTimeout(const Element& element, std::chrono::milliseconds limit) {
    @autoreleasepool {
        // The API takes seconds.
        if (element.handle)
            AXUIElementSetMessagingTimeout(axElement(element), std::chrono::duration<float>(limit).count());
    }
}

std::optional<Element> MacAccessibility::elementAtPosition(const Element& within, const Point& axPoint) {
    @autoreleasepool {
        if (!within.handle)
            return {};
        AXUIElementRef found = nullptr;
        const AXError error = AXUIElementCopyElementAtPosition(
            axElement(within), static_cast<float>(axPoint.x), static_cast<float>(axPoint.y), &found);
        if (error != kAXErrorSuccess || !found)
            return {};
        return elementFrom(CfRef<AXUIElementRef>::adopt(found));
    }
}

std::optional<AttributeValue> MacAccessibility::copyAttribute(const Element& element,
                                                              std::string_view attribute) {
    if (attribute == attribute::kFrameExcess) // programs draw their own frames, and do not know the name
        return {};
    if (isOfFrame(attribute))
        m_lateFrames.willRead(key(element));
    return read(element, attribute);
}

std::optional<Rect> MacAccessibility::readFrame(const Element& window) {
    const auto position = read(window, attribute::kPosition);
    const auto* const origin = position ? std::get_if<Point>(&*position) : nullptr;
    const auto extent = origin ? read(window, attribute::kSize) : std::nullopt;
    const auto* const size = extent ? std::get_if<Size>(&*extent) : nullptr;
    return size ? std::optional(Rect{origin->x, origin->y, size->width, size->height}) : std::nullopt;
}

std::optional<AttributeValue> MacAccessibility::read(const Element& element, std::string_view attribute) {
    @autoreleasepool {
        const auto name = nsString(attribute);
        if (!element.handle || !name)
            return {};
        CFTypeRef copied = nullptr;
        const AXError error = AXUIElementCopyAttributeValue(axElement(element), cfString(name), &copied);
        // An application may report success without a value.
        if (error != kAXErrorSuccess || !copied)
            return {};
        const auto value = CfRef<CFTypeRef>::adopt(copied);
        return attributeValueFrom(value.get());
    }
}

void MacAccessibility::setAttribute(const Element& element, std::string_view attribute,
                                    const AttributeValue& value) {
    @autoreleasepool {
        const auto name = nsString(attribute);
        const auto written = cfValue(value);
        if (!element.handle || !name || !written)
            return;
        // Before the write, because this reads the old frame.
        if (isOfFrame(attribute))
            m_lateFrames.willWrite(element, key(element), value);
        AXUIElementSetAttributeValue(axElement(element), cfString(name), written.get());
    }
}

bool MacAccessibility::canExpress(const Rect& axFrame) {
    return axFrame.isFinite();
}

std::uintptr_t MacAccessibility::key(const Element& element) {
    @autoreleasepool {
        return element.handle ? CFHash(element.handle.get()) : 0;
    }
}

SubscriptionPtr MacAccessibility::onWindowCreated(const Element& application,
                                                  std::function<void(const Element& window)> created) {
    const auto owner = pid(application);
    if (!owner || *owner == m_workspace.ownProcessIdentifier())
        return nullptr;
    return observeElementPatiently(m_workspace, m_queue,
                                   {*owner, application, kWindowCreated, std::move(created)});
}

SubscriptionPtr MacAccessibility::onWindowClosed(const Element& window, std::function<void()> closed) {
    const auto owner = pid(window);
    // The element of an application is not a window.
    if (!owner || *owner == m_workspace.ownProcessIdentifier() ||
        CFEqual(window.handle.get(), application(*owner).handle.get()))
        return nullptr;
    auto end = std::make_unique<WindowEnd>(std::move(closed));
    end->destroyed = observeElement(
        {*owner, window, kElementDestroyed, [told = end->closed](const Element&) { WindowEnd::tell(told); }});
    if (!end->destroyed)
        return nullptr;
    // A process that is killed sends no AXUIElementDestroyed.
    end->terminated = m_workspace.addObserver(
        ApplicationEvent::Terminated, [told = end->closed, pid = *owner](const RunningApplication& app) {
            if (app.processIdentifier == pid)
                WindowEnd::tell(told);
        });
    return end;
}

bool MacAccessibility::hasRefused(const Element& /*window*/) {
    return false;
}

SubscriptionPtr
MacAccessibility::onCorrected(std::function<void(const Element& window, const Rect& axFrame)> /*corrected*/) {
    return nullptr;
}

std::optional<ProcessId> MacAccessibility::pid(const Element& element) {
    @autoreleasepool {
        pid_t owner = 0; // the system-wide element has no process and leaves it at 0
        if (!element.handle || AXUIElementGetPid(axElement(element), &owner) != kAXErrorSuccess || owner <= 0)
            return {};
        return owner;
    }
}

std::optional<RunningApplication> MacAccessibility::owner(const Element& window) {
    const auto owner = pid(window);
    return owner ? m_workspace.runningApplication(*owner) : std::nullopt;
}

} // namespace tessarel::macos
