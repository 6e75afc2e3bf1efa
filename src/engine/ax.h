#pragma once

#include "ports/accessibility_port.h"
#include "ports/rect.h"
#include "ports/workspace_port.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessarel {

/// The window that has the keyboard focus, and the program that it belongs to.
struct FocusedWindow {
    Element window;
    RunningApplication app;
};

/// Access to other programs' windows. Rectangles are in accessibility coordinates.
///
/// Nothing here reports a failure: a read that fails has no value, a write that fails is ignored. A call may
/// block until the other program has answered.
class AX {
public:
    AX(AccessibilityPort& accessibility, WorkspacePort& workspace);

    /// The attribute's value, whatever its kind.
    [[nodiscard]] std::optional<AttributeValue> copy(const Element& element,
                                                     std::string_view attribute) const;
    /// These are empty also when the value is of another kind.
    [[nodiscard]] std::optional<Element> element(const Element& element, std::string_view attribute) const;
    [[nodiscard]] std::optional<Point> point(const Element& element, std::string_view attribute) const;
    [[nodiscard]] std::optional<Size> size(const Element& element, std::string_view attribute) const;
    [[nodiscard]] std::optional<std::string> string(const Element& element, std::string_view attribute) const;
    /// A truth value, or a number read as one.
    [[nodiscard]] std::optional<bool> boolean(const Element& element, std::string_view attribute) const;

    /// Where the window is; empty when it does not say.
    [[nodiscard]] std::optional<Rect> frame(const Element& window) const;

    /// The windows of process `pid`, in the order that it gives; none when it does not answer.
    [[nodiscard]] std::vector<Element> windows(ProcessId pid) const;

    /// The focused window of the frontmost program; empty when there is none or the program is this one.
    [[nodiscard]] std::optional<FocusedWindow> focusedWindow() const;

    /// Whether the window may be moved: not when it says that it is no window, minimised or full screen.
    [[nodiscard]] bool isUsable(const Element& window) const;

    /// A number that stays with the element for as long as it exists; equal elements have equal keys.
    [[nodiscard]] std::uintptr_t key(const Element& element) const;

    /// Does `work` while the enhanced interface of process `pid` is off, which is on again afterwards if it
    /// was on before. Programs animate their windows while it is on, and a frame read back would be wrong.
    template <typename Work>
    void withEnhancedUIOff(ProcessId pid, Work&& work);

    /// Moves and resizes the window. With `bounds`, a window that then sticks out of them on the right or at
    /// the bottom by more than a point, because it refused the size, is pulled back until its far edge meets
    /// theirs, but not past their left or top edge.
    ///
    /// Nothing is written when the system cannot express `axFrame`.
    void setFrame(const Element& window, ProcessId pid, const Rect& axFrame,
                  const std::optional<Rect>& bounds);

private:
    void writeFrame(const Element& window, const Rect& axFrame);
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
