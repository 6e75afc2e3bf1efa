// SPDX-License-Identifier: MIT

#pragma once

#include "model/signal.h"
#include "platform/sim/windows/sim_state.h"
#include "ports/desktop/accessibility_port.h"

#include <chrono>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tessarel::sim {

/// The accessibility port of the simulated desktop.
///
/// Every request is recorded in order, as a line such as "read window 3 AXSize",
/// "write window 3 AXSize 640x480", "find 300,160", "limit window 3 250" (in milliseconds) or
/// "observe application 101". A write to a window of an application whose enhanced interface is on takes
/// effect after a delay, as on a system that animates it.
class SimAccessibility : public AccessibilityPort {
public:
    explicit SimAccessibility(SimState& state) : m_state(state) {}

    [[nodiscard]] Element application(ProcessId pid) override;
    /// Returns the element of a window, which need not exist.
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
    /// Returns whether the desktop keeps the window (see `SimWindow::isTiled`).
    [[nodiscard]] bool hasRefused(const Element& window) override;
    /// Returns null, unless `postponeReads` has been called.
    [[nodiscard]] SubscriptionPtr writeSeveral() override;
    /// Calls `corrected` when a test calls `correct`, and at the end of writes to several windows.
    [[nodiscard]] SubscriptionPtr
    onCorrected(std::function<void(const Element& window, const Rect& axFrame)> corrected) override;
    [[nodiscard]] std::optional<RunningApplication> owner(const Element& window) override;

    /// From now on, the frames of several written windows can be read only once all have been written.
    void postponeReads() { m_postponesReads = true; }
    /// Changes the frame of a window, as its program does shortly after a write.
    void correct(WindowId id, const Rect& axFrame);
    /// Calls the observers of the window's application, as if the window had just been opened.
    void reportCreated(WindowId id);
    /// Calls `handler` after every write, with its line in the record. The handler may change the desktop.
    void setWriteHandler(std::function<void(const std::string& line)> handler) {
        m_afterWrite = std::move(handler);
    }
    /// Returns the number of subscriptions to new windows.
    [[nodiscard]] std::size_t observers() const { return m_state.windowObservers.count(); }
    /// Returns the number of subscriptions to the closing of windows.
    [[nodiscard]] std::size_t closeObservers() const { return m_state.closeObservers.count(); }

private:
    struct Name;

    [[nodiscard]] static const Name* nameOf(const Element& element);
    [[nodiscard]] static Element elementOf(const Name& name);
    [[nodiscard]] static std::string text(const Name& name);

    [[nodiscard]] SimApplication* ask(const Name& asked, ProcessId pid);
    // Return an attribute's override or, without one, its value.
    [[nodiscard]] std::optional<AttributeValue> applicationAttribute(ProcessId pid,
                                                                     std::string_view attribute);
    [[nodiscard]] std::optional<AttributeValue> windowAttribute(WindowId id, std::string_view attribute);
    [[nodiscard]] std::optional<AttributeValue> partAttribute(WindowId id, std::string_view attribute);
    /// Sends a write to the application. Values of the wrong type and values that are not finite are ignored.
    void write(const Name& name, std::string_view attribute, const AttributeValue& value);
    void endSeveral();
    [[nodiscard]] bool isPostponed(WindowId id, std::string_view attribute) const;
    void setPosition(SimWindow& window, const Point& position);
    void setSize(SimWindow& window, const Size& size);
    [[nodiscard]] Size cut(const Size& size, const Point& axOrigin) const;
    /// Starts the move of a window to `axFrame`.
    void show(SimWindow& window, const Rect& axFrame);

    SimState& m_state;
    std::function<void(const std::string& line)> m_afterWrite;
    Signal<const Element&, const Rect&> m_corrections;
    bool m_postponesReads = false;
    std::optional<std::vector<WindowId>> m_several; ///< written since `writeSeveral`; empty outside of it
    SimClock::Duration m_timeLimit = SimApplication::kTimeLimit; ///< for elements without their own limit
};

} // namespace tessarel::sim
