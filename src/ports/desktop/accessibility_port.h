// SPDX-License-Identifier: MIT

#pragma once

#include "model/subscription.h"
#include "ports/desktop/process_id.h"
#include "ports/desktop/rect.h"
#include "ports/desktop/running_application.h"

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

/// An opaque reference to an application, a window or part of a window, or to the whole desktop.
///
/// Two references to the same object may hold different handles; compare them by `AccessibilityPort::key`.
struct Element {
    /// Shared, because the native handles of some desktops are reference-counted.
    std::shared_ptr<const void> handle;
};

/// Value of an attribute. A boolean that a program reports as a number arrives as a `double`.
using AttributeValue = std::variant<bool, double, Point, Size, std::string, Element, std::vector<Element>>;

/// Names of the attributes that Tessarel reads or writes.
namespace attribute {
inline constexpr std::string_view kPosition = "AXPosition"; ///< `Point`, of a window
inline constexpr std::string_view kSize = "AXSize";         ///< `Size`, of a window
inline constexpr std::string_view kWindows = "AXWindows";   ///< list of `Element`, of an application
inline constexpr std::string_view kFocusedWindow = "AXFocusedWindow"; ///< `Element`, of an application
inline constexpr std::string_view kRole = "AXRole";                   ///< string
inline constexpr std::string_view kWindow = "AXWindow";       ///< `Element`: the window that contains a part
inline constexpr std::string_view kSubrole = "AXSubrole";     ///< string, of a window
inline constexpr std::string_view kMinimized = "AXMinimized"; ///< bool, of a window
inline constexpr std::string_view kFullScreen = "AXFullScreen"; ///< bool, of a window
/// bool, of an application: whether assistive technology has asked it for an enhanced interface.
inline constexpr std::string_view kEnhancedUserInterface = "AXEnhancedUserInterface";
/// `Size`, of a window: by how much the desktop's own window around it is larger than its visible frame. Has
/// another value while the desktop has resized only one of the two. Missing for maximised windows, which have
/// a frame of their own, and on desktops that do not put windows of their own around others.
inline constexpr std::string_view kFrameExcess = "TessarelFrameExcess";
} // namespace attribute

/// Reads and writes other applications' windows, as far as the system allows.
///
/// Points and sizes are in accessibility coordinates: origin at the top-left corner of the primary display, y
/// down. A window's rectangle is its visible outer frame.
///
/// Call on the main thread. A call may block until the owning program replies or a time limit passes. A read
/// that fails returns an empty value. The owning program may refuse or adjust a write, and no result is
/// reported; read the attribute back to learn it. Only a desktop that refuses is reported (`hasRefused`).
class AccessibilityPort {
public:
    virtual ~AccessibilityPort() = default;

    /// Returns the element for the application with process id `pid`. Never fails: if there is no such
    /// process, the element has no attributes.
    [[nodiscard]] virtual Element application(ProcessId pid) = 0;

    /// Returns the element that represents the whole desktop.
    [[nodiscard]] virtual Element systemWide() = 0;

    /// Limits how long a call about `element` may block. The limit applies to this element and its copies,
    /// but not to other references to the same object. The limit of the system-wide element applies to all
    /// elements without a limit of their own. Back ends that never wait for another program ignore it.
    virtual void setMessagingTimeout(const Element& element, std::chrono::milliseconds limit) = 0;

    /// Returns the topmost window, or part of a window, at `axPoint`. Pass the system-wide element as
    /// `within` to search all windows, or an application to search its windows only. Empty if nothing there
    /// can be moved or its owner does not reply. Whether windows of this program are found depends on the
    /// back end.
    [[nodiscard]] virtual std::optional<Element> elementAtPosition(const Element& within,
                                                                   const Point& axPoint) = 0;

    /// Returns the value of `attribute` in the type that its owner reports. Empty if the element lacks the
    /// attribute or its owner does not reply.
    [[nodiscard]] virtual std::optional<AttributeValue> copyAttribute(const Element& element,
                                                                      std::string_view attribute) = 0;

    /// Requests that the owner set `attribute` to `value`. Writes to one element take effect in order, at the
    /// latest before the next read of that element. A value that the system cannot represent is not written.
    virtual void setAttribute(const Element& element, std::string_view attribute,
                              const AttributeValue& value) = 0;

    /// Returns whether the system can represent `axFrame`: every value is finite and within the range of the
    /// system's number type.
    [[nodiscard]] virtual bool canExpress(const Rect& axFrame) = 0;

    /// Returns a key that stays the same for as long as the element exists. Equal elements have equal keys;
    /// on some systems different elements may, rarely, share a key.
    [[nodiscard]] virtual std::uintptr_t key(const Element& element) = 0;

    /// Calls `created` on the main thread for every window that `application` opens from now on, until the
    /// returned subscription is destroyed. Returns null if the application is this program, has exited, does
    /// not reply or refuses.
    ///
    /// The window may not have its final size and position yet. The same window may be reported twice.
    [[nodiscard]] virtual SubscriptionPtr
    onWindowCreated(const Element& application, std::function<void(const Element& window)> created) = 0;

    /// Calls `closed` once on the main thread when `window` closes, unless the returned subscription is
    /// destroyed first. Minimising a window does not count. Returns null if the element is not a window of
    /// another program, or if it cannot be observed.
    ///
    /// Relies on events only: after this call has returned, it sends no request to the window's program or
    /// any other.
    [[nodiscard]] virtual SubscriptionPtr onWindowClosed(const Element& window,
                                                         std::function<void()> closed) = 0;

    /// Returns the process that owns the element; empty if there is none. For an element that has ceased to
    /// exist, returns its former owner or an empty value.
    [[nodiscard]] virtual std::optional<ProcessId> pid(const Element& element) = 0;

    /// Returns whether the desktop, not the owning program, has refused the last writes of position and size
    /// to `window`, so that it has stayed where it was: tiling window managers do. Call it right after the
    /// writes. Returns false where the desktop has no say in it.
    [[nodiscard]] virtual bool hasRefused(const Element& window) = 0;

    /// Announces writes to several windows, until the returned handle is destroyed. A back end that would
    /// wait for each window when it is read back may wait for all of them at the end instead. Until then,
    /// position and size of a window that has been written have no value; at the end, `corrected` of
    /// `onCorrected` is called with the frame of each. Returns null where that saves no time.
    [[nodiscard]] virtual SubscriptionPtr writeSeveral() = 0;

    /// Calls `corrected` on the main thread, until the returned subscription is destroyed, when a program
    /// changes the frame of its window within half a second of the last write to it: some programs correct
    /// their size once they have seen the new one. What the user does with the mouse does not count, and ends
    /// that time. The frame may be the written one. Also calls `corrected` once the desktop has carried out a
    /// write that it had not when the frame was read back, which had no value then; however much later. The
    /// half second then begins anew. Returns null where such changes are not observed.
    [[nodiscard]] virtual SubscriptionPtr
    onCorrected(std::function<void(const Element& window, const Rect& axFrame)> corrected) = 0;

    /// Returns the application that `window` belongs to. That is the application of its process, except where
    /// several applications share a process. Empty if there is none. Sends no request to the window's
    /// program.
    [[nodiscard]] virtual std::optional<RunningApplication> owner(const Element& window) = 0;
};

} // namespace tessarel
