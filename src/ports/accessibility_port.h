#pragma once

#include "model/subscription.h"
#include "ports/process_id.h"
#include "ports/rect.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace tessarel {

/// An application or a window of another program, as the desktop names it. Opaque: `AccessibilityPort::key`
/// tells whether two elements are the same one.
struct Element {
    std::shared_ptr<const void> handle; // shared because some desktops' own handles are reference-counted
};

/// What an attribute may hold. Truth values that a program gives as a number come as a number.
using AttributeValue = std::variant<bool, double, Point, Size, std::string, Element, std::vector<Element>>;

/// Names of the attributes that Tessarel reads or writes.
namespace attribute {
inline constexpr std::string_view kPosition = "AXPosition";           ///< Point, window
inline constexpr std::string_view kSize = "AXSize";                   ///< Size, window
inline constexpr std::string_view kWindows = "AXWindows";             ///< elements, application
inline constexpr std::string_view kFocusedWindow = "AXFocusedWindow"; ///< element, application
inline constexpr std::string_view kRole = "AXRole";                   ///< string
inline constexpr std::string_view kWindow = "AXWindow"; ///< element: the window that a part of it belongs to
inline constexpr std::string_view kSubrole = "AXSubrole";                             ///< string, window
inline constexpr std::string_view kMinimized = "AXMinimized";                         ///< bool, window
inline constexpr std::string_view kFullScreen = "AXFullScreen";                       ///< bool, window
inline constexpr std::string_view kEnhancedUserInterface = "AXEnhancedUserInterface"; ///< bool, application
} // namespace attribute

/// Other applications and their windows, as far as the system lets us see and move them.
///
/// Points and sizes are in accessibility coordinates: origin at the top-left corner of the primary display, y
/// down; a window's rectangle is its visible outer frame. Call on the main thread; a call may block until the
/// owner has answered or a time limit has passed. A refused read is empty. A write may be refused or bent by
/// the owner and reports nothing: who must know reads back.
class AccessibilityPort {
public:
    virtual ~AccessibilityPort() = default;

    /// The element of the application with process id `pid`. Never fails: an element of a process that does
    /// not exist simply has no attributes.
    [[nodiscard]] virtual Element application(ProcessId pid) = 0;

    /// The element that stands for the whole desktop.
    [[nodiscard]] virtual Element systemWide() = 0;

    /// Bounds how long a call about `element` may block. The limit belongs to this very element, copies of it
    /// included, and not to others that are equal to it; that of the system-wide element holds for all
    /// elements without one of their own. Systems on which no program is waited for need none.
    virtual void setMessagingTimeout(const Element& element, std::chrono::milliseconds limit) = 0;

    /// What is on top at `axPoint` among all windows, or among those of the application that `within` is: a
    /// window, or a part of one. Empty when there is nothing that could be moved, or its owner does not
    /// answer. Whether windows of this program are found is not said.
    [[nodiscard]] virtual std::optional<Element> elementAtPosition(const Element& within,
                                                                   const Point& axPoint) = 0;

    /// Value of `attribute` in the type its owner gives it; empty when it has none or does not answer.
    [[nodiscard]] virtual std::optional<AttributeValue> copyAttribute(const Element& element,
                                                                      std::string_view attribute) = 0;

    /// Asks the owner for `value`. Writes to one element take effect in order, at the latest at its next
    /// read. A value that the system cannot express is not written.
    virtual void setAttribute(const Element& element, std::string_view attribute,
                              const AttributeValue& value) = 0;

    /// Whether a frame can be handed over at all: finite, and within what the system's numbers hold.
    [[nodiscard]] virtual bool canExpress(const Rect& axFrame) = 0;

    /// A number that stays with the element for as long as it exists; equal elements have equal keys.
    [[nodiscard]] virtual std::uintptr_t key(const Element& element) = 0;

    /// Calls `created` with every window that `application` opens from now on, on the main thread, until the
    /// answer ends. Null when the application is this program, has gone, does not answer or refuses.
    ///
    /// The window may still be on its way to its size and place. The same one may be reported twice.
    [[nodiscard]] virtual SubscriptionPtr
    onWindowCreated(const Element& application, std::function<void(const Element& window)> created) = 0;

    /// Calls `closed` once `window` has closed, on the main thread, until the answer ends; not when it is
    /// minimised, and not twice. Null when the element is no window of another program.
    ///
    /// Told by what the system reports: once this call has returned, neither the window's program nor anybody
    /// else is asked.
    [[nodiscard]] virtual SubscriptionPtr onWindowClosed(const Element& window,
                                                         std::function<void()> closed) = 0;

    /// The process that owns the element; empty when it names none. Of an element that has gone it is the
    /// process that had it, or empty.
    [[nodiscard]] virtual std::optional<ProcessId> pid(const Element& element) = 0;
};

} // namespace tessarel
