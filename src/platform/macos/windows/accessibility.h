// SPDX-License-Identifier: MIT

#pragma once

#include "platform/macos/windows/late_frames.h"
#include "platform/macos/windows/workspace.h"
#include "ports/desktop/accessibility_port.h"
#include "ports/main_queue_port.h"

#include <chrono>
#include <functional>

namespace tessarel::macos {

/// Other applications' windows, through the accessibility API.
///
/// Every read and write of an attribute is a synchronous message to the owning application. The call blocks
/// until the application replies or the messaging timeout passes.
class MacAccessibility : public AccessibilityPort {
public:
    /// `workspace` and `queue` must outlive this object and the subscriptions of `onWindowCreated`. `wait`
    /// blocks the main thread while an application is late to apply a frame; see `LateFrames`.
    MacAccessibility(MacWorkspace& workspace, MainQueuePort& queue, LateFrames::Wait wait);

    [[nodiscard]] Element application(ProcessId pid) override;
    [[nodiscard]] Element systemWide() override;
    void setMessagingTimeout(const Element& element, std::chrono::milliseconds limit) override;
    [[nodiscard]] std::optional<Element> elementAtPosition(const Element& within,
                                                           const Point& axPoint) override;
    /// Reads position and size only once the application has applied the last written frame: the call may
    /// block for `LateFrames::kLongest` in addition to the message itself.
    [[nodiscard]] std::optional<AttributeValue> copyAttribute(const Element& element,
                                                              std::string_view attribute) override;
    void setAttribute(const Element& element, std::string_view attribute,
                      const AttributeValue& value) override;
    /// Returns true for every frame of finite numbers: the API takes doubles.
    [[nodiscard]] bool canExpress(const Rect& axFrame) override;
    /// Returns the element's `CFHash`; 0 for an element without a handle.
    [[nodiscard]] std::uintptr_t key(const Element& element) override;
    /// Registers for new windows of `application`. An application that cannot complete the request yet, as
    /// is usual just after its launch, is retried; see `observeElementPatiently`.
    [[nodiscard]] SubscriptionPtr
    onWindowCreated(const Element& application, std::function<void(const Element& window)> created) override;
    /// Sends the window's application one request, to register for the notification. The termination of the
    /// application counts as the window's close as well.
    [[nodiscard]] SubscriptionPtr onWindowClosed(const Element& window,
                                                 std::function<void()> closed) override;
    /// Returns the process id that the element carries, also after its window has closed; empty for the
    /// system-wide element and for an element without a handle.
    [[nodiscard]] std::optional<ProcessId> pid(const Element& element) override;
    /// Returns false: only the owning program can refuse.
    [[nodiscard]] bool hasRefused(const Element& window) override;
    /// Returns null: every write waits for the program.
    [[nodiscard]] SubscriptionPtr writeSeveral() override { return nullptr; }
    /// Returns null: corrections are not observed.
    [[nodiscard]] SubscriptionPtr
    onCorrected(std::function<void(const Element& window, const Rect& axFrame)> corrected) override;
    /// Returns the application of the window's process; a process has one bundle identifier.
    [[nodiscard]] std::optional<RunningApplication> owner(const Element& window) override;

private:
    /// Reads an attribute at once, without waiting for a late frame.
    [[nodiscard]] static std::optional<AttributeValue> read(const Element& element,
                                                            std::string_view attribute);
    /// Reads position and size, in accessibility coordinates; empty when either one is missing or has
    /// another type than it should.
    [[nodiscard]] static std::optional<Rect> readFrame(const Element& window);

    MacWorkspace& m_workspace;
    MainQueuePort& m_queue;
    LateFrames m_lateFrames;
};

} // namespace tessarel::macos
