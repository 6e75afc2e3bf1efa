#pragma once

#include "platform/macos/workspace.h"
#include "ports/accessibility_port.h"

#include <chrono>
#include <functional>

namespace tessarel::macos {

/// Other programs' windows through the system's accessibility interface. Every read and write is a message
/// to the program that is waited for, up to the time limit.
class MacAccessibility : public AccessibilityPort {
public:
    /// `workspace` outlives the accessibility.
    explicit MacAccessibility(MacWorkspace& workspace) : m_workspace(workspace) {}

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
    [[nodiscard]] SubscriptionPtr
    onWindowCreated(const Element& application, std::function<void(const Element& window)> created) override;
    /// Asks the window's program once, to be told.
    [[nodiscard]] SubscriptionPtr onWindowClosed(const Element& window,
                                                 std::function<void()> closed) override;
    /// Of a closed window it is still the process that had it.
    [[nodiscard]] std::optional<ProcessId> pid(const Element& element) override;

private:
    MacWorkspace& m_workspace;
};

} // namespace tessarel::macos
