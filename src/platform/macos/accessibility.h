#pragma once

#include "platform/macos/late_frames.h"
#include "platform/macos/workspace.h"
#include "ports/accessibility_port.h"
#include "ports/main_queue_port.h"

#include <chrono>
#include <functional>

namespace tessarel::macos {

/// Other programs' windows through the system's accessibility interface. Every read and write is a message
/// to the program that is waited for, up to the time limit.
class MacAccessibility : public AccessibilityPort {
public:
    /// `workspace` and `queue` outlive the accessibility and the observers of new windows. `wait` is for a
    /// program that is late with a frame that it has been given.
    MacAccessibility(MacWorkspace& workspace, MainQueuePort& queue, LateFrames::Wait wait);

    [[nodiscard]] Element application(ProcessId pid) override;
    [[nodiscard]] Element systemWide() override;
    void setMessagingTimeout(const Element& element, std::chrono::milliseconds limit) override;
    [[nodiscard]] std::optional<Element> elementAtPosition(const Element& within,
                                                           const Point& axPoint) override;
    [[nodiscard]] std::optional<AttributeValue> copyAttribute(const Element& element,
                                                              std::string_view attribute) override;
    void setAttribute(const Element& element, std::string_view attribute,
                      const AttributeValue& value) override;
    [[nodiscard]] bool canExpress(const Rect& axFrame) override;
    [[nodiscard]] std::uintptr_t key(const Element& element) override;
    /// A program that has just been launched may be unable to answer for a moment: it is asked a few times
    /// more, and then whenever it comes to the front.
    [[nodiscard]] SubscriptionPtr
    onWindowCreated(const Element& application, std::function<void(const Element& window)> created) override;
    /// Asks the window's program once, to be told.
    [[nodiscard]] SubscriptionPtr onWindowClosed(const Element& window,
                                                 std::function<void()> closed) override;
    /// Of a closed window it is still the process that had it.
    [[nodiscard]] std::optional<ProcessId> pid(const Element& element) override;

private:
    [[nodiscard]] static std::optional<AttributeValue> read(const Element& element,
                                                            std::string_view attribute);
    [[nodiscard]] static std::optional<Rect> readFrame(const Element& window);

    MacWorkspace& m_workspace;
    MainQueuePort& m_queue;
    LateFrames m_lateFrames;
};

} // namespace tessarel::macos
