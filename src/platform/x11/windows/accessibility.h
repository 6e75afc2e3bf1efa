#pragma once

#include "platform/x11/displays/monitors.h"
#include "platform/x11/server/connection.h"
#include "platform/x11/windows/application_watch.h"
#include "platform/x11/windows/client_windows.h"
#include "platform/x11/windows/placement.h"
#include "ports/accessibility_port.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>

namespace tessarel::x11 {

/// Other programs' windows by the conventions between clients and window managers.
///
/// An element is a process, or a managed window of a process. Writes of position and size to a window are
/// collected and asked of the manager in one step, when that window is read next or the turn ends; a read
/// after a write is the settled truth, and has no value when the manager does not answer in time. Windows of
/// this program are not answered.
class X11Accessibility : public AccessibilityPort {
public:
    X11Accessibility(Connection& connection, Monitors& monitors, ClientWindows& windows,
                     ApplicationWatch& watch);

    [[nodiscard]] Element application(ProcessId pid) override;
    [[nodiscard]] Element systemWide() override;
    /// Nothing to bound: the server answers for the programs, and the manager is never waited for long.
    void setMessagingTimeout(const Element& element, std::chrono::milliseconds limit) override;
    /// A managed window, wherever within its visible frame the point is.
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

private:
    [[nodiscard]] std::optional<AttributeValue> applicationAttribute(ProcessId pid,
                                                                     std::string_view attribute);
    [[nodiscard]] std::optional<AttributeValue> focusedWindow(ProcessId pid);
    [[nodiscard]] std::optional<AttributeValue> windowsOf(ProcessId pid);
    [[nodiscard]] std::optional<AttributeValue> windowAttribute(const Element& element,
                                                                std::string_view attribute);
    /// Whether the window is there and still that process's.
    [[nodiscard]] bool isWindowOf(xcb_window_t window, ProcessId pid);
    void finishWrites();
    /// Whether the manager has not said in this turn where the window is to be.
    [[nodiscard]] bool isOnItsWay(xcb_window_t window) const;

    Connection& m_connection;
    Monitors& m_monitors;
    ClientWindows& m_windows;
    ApplicationWatch& m_watch;
    Placement m_placement;
    xcb_window_t m_written = XCB_WINDOW_NONE; // the window that the wish is for
    FrameWish m_wish;
    struct {
        xcb_window_t window = XCB_WINDOW_NONE;
        std::uint64_t turn = 0;
    } m_unsettled; // the window, and the turn, in which the manager has not answered
    SubscriptionPtr m_endOfTurn;
};

} // namespace tessarel::x11
