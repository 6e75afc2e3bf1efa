#pragma once

#include "platform/sim/sim_state.h"
#include "ports/accessibility_port.h"

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>
#include <utility>

namespace tessarel::sim {

/// The windows of the simulated desktop's applications.
///
/// Every request is recorded in the order of asking, as a line like "read window 3 AXSize",
/// "write window 3 AXSize 640x480", "find 300,160", "limit window 3 250" or "observe application 101". A
/// write to a window of a program whose enhanced interface is on is seen only after a while, as on a system
/// that animates it.
class SimAccessibility : public AccessibilityPort {
public:
    explicit SimAccessibility(SimState& state) : m_state(state) {}

    [[nodiscard]] Element application(ProcessId pid) override;
    [[nodiscard]] Element window(WindowId id);
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
    [[nodiscard]] SubscriptionPtr onWindowClosed(const Element& window,
                                                 std::function<void()> closed) override;
    [[nodiscard]] std::optional<ProcessId> pid(const Element& element) override;

    /// Tells whoever observes the window's application that it has been opened.
    void reportCreated(WindowId id);
    /// Calls `handler` after every write with its line in the record; it may do anything to the desktop.
    void setWriteHandler(std::function<void(const std::string& line)> handler) {
        m_afterWrite = std::move(handler);
    }
    /// How many observers of applications there are.
    [[nodiscard]] std::size_t observers() const { return m_state.windowObservers.count(); }
    /// How many observers of windows that may close there are.
    [[nodiscard]] std::size_t closeObservers() const { return m_state.closeObservers.count(); }

private:
    struct Name;

    [[nodiscard]] static const Name* nameOf(const Element& element);
    [[nodiscard]] static Element elementOf(const Name& name);
    [[nodiscard]] static std::string text(const Name& name);

    [[nodiscard]] SimApplication* ask(const Name& asked, ProcessId pid);
    [[nodiscard]] std::optional<AttributeValue> applicationAttribute(ProcessId pid,
                                                                     std::string_view attribute);
    [[nodiscard]] std::optional<AttributeValue> windowAttribute(WindowId id, std::string_view attribute);
    [[nodiscard]] std::optional<AttributeValue> partAttribute(WindowId id, std::string_view attribute);
    void write(const Name& name, std::string_view attribute, const AttributeValue& value);
    void setPosition(SimWindow& window, const Point& position);
    void setSize(SimWindow& window, const Size& size);
    [[nodiscard]] Size cut(const Size& size, const Point& axOrigin) const;
    void show(SimWindow& window, const Rect& axFrame);

    SimState& m_state;
    std::function<void(const std::string& line)> m_afterWrite;
    SimClock::Duration m_timeLimit = SimApplication::kTimeLimit; ///< of elements without their own
};

} // namespace tessarel::sim
