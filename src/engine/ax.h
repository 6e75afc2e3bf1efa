// SPDX-License-Identifier: MIT

#pragma once

#include "model/subscription.h"
#include "ports/desktop/accessibility_port.h"
#include "ports/desktop/process_id.h"
#include "ports/desktop/rect.h"
#include "ports/desktop/workspace_port.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessarel {

/// The window that has the keyboard focus and its application.
struct FocusedWindow {
    Element window;
    RunningApplication app;
};

/// Typed access to other programs' windows. Rectangles are in accessibility coordinates.
///
/// No function reports a failure: a read that fails returns an empty value, a write that fails is ignored. A
/// call may block until the other program replies or a time limit passes.
class AX {
public:
    /// Both ports must outlive this object.
    AX(AccessibilityPort& accessibility, WorkspacePort& workspace);

    /// Returns the attribute's value, whatever its type.
    [[nodiscard]] std::optional<AttributeValue> copy(const Element& element,
                                                     std::string_view attribute) const;
    /// The typed reads below also return an empty value if the attribute has another type.
    [[nodiscard]] std::optional<Element> element(const Element& element, std::string_view attribute) const;
    [[nodiscard]] std::optional<Point> point(const Element& element, std::string_view attribute) const;
    [[nodiscard]] std::optional<Size> size(const Element& element, std::string_view attribute) const;
    [[nodiscard]] std::optional<std::string> string(const Element& element, std::string_view attribute) const;
    /// Returns a boolean value, or a number as a boolean: false if it is 0.
    [[nodiscard]] std::optional<bool> boolean(const Element& element, std::string_view attribute) const;

    /// Returns the window's visible outer frame; empty if position or size cannot be read.
    [[nodiscard]] std::optional<Rect> frame(const Element& window) const;

    /// Returns the windows of process `pid` in the order that the process reports. Empty if it does not
    /// reply.
    [[nodiscard]] std::vector<Element> windows(ProcessId pid) const;

    /// Returns the focused window of the frontmost application. Empty if there is none or the application is
    /// this program.
    [[nodiscard]] std::optional<FocusedWindow> focusedWindow() const;

    /// Returns whether the window may be moved: it is neither minimised nor full screen, and its role is that
    /// of a window. An attribute that cannot be read does not exclude the window.
    [[nodiscard]] bool isUsable(const Element& window) const;

    /// Returns the window at `axPoint`, also if a part of it, such as a button, is found there. Empty if
    /// nothing there can be moved or its owner does not reply. Sets the messaging timeouts of the system-wide
    /// element and of the window to `timeLimit`.
    [[nodiscard]] std::optional<Element> windowAt(const Point& axPoint,
                                                  std::chrono::milliseconds timeLimit) const;

    /// Returns the process that owns the element (see `AccessibilityPort::pid`).
    [[nodiscard]] std::optional<ProcessId> pid(const Element& element) const;

    /// Returns the application that the window of process `pid` belongs to (see `AccessibilityPort::owner`).
    /// For a window that has closed, returns the application of the process.
    [[nodiscard]] std::optional<RunningApplication> owner(const Element& window, ProcessId pid) const;

    /// Calls `created` for every window that process `pid` opens from now on, until the returned subscription
    /// is destroyed. Returns null if the process cannot be observed. Sets the messaging timeout of the
    /// observed application element to `timeLimit`.
    [[nodiscard]] SubscriptionPtr onWindowCreated(ProcessId pid, std::chrono::milliseconds timeLimit,
                                                  std::function<void(const Element& window)> created) const;

    /// Calls `closed` once when `window` closes, unless the returned subscription is destroyed first. Returns
    /// null if the window cannot be observed.
    [[nodiscard]] SubscriptionPtr onWindowClosed(const Element& window, std::function<void()> closed) const;

    /// Announces that several windows are moved until the returned handle is destroyed (see
    /// `AccessibilityPort::writeSeveral`).
    [[nodiscard]] SubscriptionPtr writeSeveral() const;

    /// Calls `corrected` when a program changes the frame of its window shortly after it was set (see
    /// `AccessibilityPort::onCorrected`).
    [[nodiscard]] SubscriptionPtr
    onCorrected(std::function<void(const Element& window, const Rect& axFrame)> corrected) const;

    /// Returns the key of an element (see `AccessibilityPort::key`).
    [[nodiscard]] std::uintptr_t key(const Element& element) const;

    /// Calls `work` while the enhanced user interface of process `pid` is off, and restores it afterwards.
    /// While it is on, programs animate their windows, so a frame that is read back would not be settled.
    template <typename Work>
    void withEnhancedUIOff(ProcessId pid, Work&& work);

    /// Moves and resizes the window. Writes nothing if the system cannot represent `axFrame`. Returns false
    /// if the desktop has refused (see `AccessibilityPort::hasRefused`).
    ///
    /// If `bounds` is given and the window then extends beyond them, because it has refused the size, moves
    /// it back to `originInside`.
    bool setFrame(const Element& window, ProcessId pid, const Rect& axFrame,
                  const std::optional<Rect>& bounds);

    /// Returns the origin that takes `axFrame` back to the right or bottom edge of `bounds`, but not beyond
    /// the left or top edge. Empty unless it extends beyond the right or bottom edge by more than a point.
    [[nodiscard]] static std::optional<Point> originInside(const Rect& bounds, const Rect& axFrame);

private:
    /// Writes size, position and size again.
    void writeFrame(const Element& window, const Rect& axFrame);
    /// Moves the window back into `bounds` as described for `setFrame`.
    void pullInto(const Rect& bounds, const Element& window);

    AccessibilityPort& m_accessibility;
    WorkspacePort& m_workspace;
};

template <typename Work>
void AX::withEnhancedUIOff(ProcessId pid, Work&& work) {
    const Element application = m_accessibility.application(pid);
    const bool wasOn = boolean(application, attribute::kEnhancedUserInterface).value_or(false);
    if (wasOn)
        m_accessibility.setAttribute(application, attribute::kEnhancedUserInterface, false);
    work();
    if (wasOn)
        m_accessibility.setAttribute(application, attribute::kEnhancedUserInterface, true);
}

} // namespace tessarel
