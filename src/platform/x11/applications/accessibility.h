// SPDX-License-Identifier: MIT

#pragma once

#include "model/signal.h"
#include "platform/x11/applications/application_watch.h"
#include "platform/x11/applications/applications.h"
#include "platform/x11/applications/correction_watch.h"
#include "platform/x11/displays/monitors.h"
#include "platform/x11/server/connection.h"
#include "platform/x11/windows/client_windows.h"
#include "platform/x11/windows/placement.h"
#include "ports/desktop/accessibility_port.h"
#include "ports/main_queue_port.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string_view>

namespace tessarel::x11 {

/// Other programs' windows, read and moved through ICCCM and EWMH.
///
/// An element is a process or a managed window of a process. Writes of position and size to a window are
/// collected and sent to the window manager as one request, when that window is read next or when the turn
/// ends. A read after a write therefore returns the settled frame; position and size are empty when the
/// window manager does not process the request in time. This program's own windows are never returned.
class X11Accessibility : public AccessibilityPort {
public:
    /// All referenced objects must outlive this one.
    X11Accessibility(Connection& connection, Monitors& monitors, ClientWindows& windows,
                     Applications& applications, ApplicationWatch& watch, MainQueuePort& queue);

    [[nodiscard]] Element application(ProcessId pid) override;
    [[nodiscard]] Element systemWide() override;
    /// Does nothing. Reads go to the X server, never to the other program, and the wait for the window
    /// manager has a limit of its own.
    void setMessagingTimeout(const Element& element, std::chrono::milliseconds limit) override;
    /// Returns the top-most managed window whose visible frame contains `axPoint`; never a part of a window.
    /// Returns `std::nullopt` over windows of this program and unmanaged windows.
    [[nodiscard]] std::optional<Element> elementAtPosition(const Element& within,
                                                           const Point& axPoint) override;
    /// Returns the value of `attribute`. First places the window if writes to it are collected.
    [[nodiscard]] std::optional<AttributeValue> copyAttribute(const Element& element,
                                                              std::string_view attribute) override;
    /// Collects a write of the position or the size; other attributes cannot be written on X11 and are
    /// ignored.
    void setAttribute(const Element& element, std::string_view attribute,
                      const AttributeValue& value) override;
    [[nodiscard]] bool canExpress(const Rect& axFrame) override;
    [[nodiscard]] std::uintptr_t key(const Element& element) override;
    /// Calls `created` with each window that appears in `_NET_CLIENT_LIST` and belongs to the process.
    [[nodiscard]] SubscriptionPtr
    onWindowCreated(const Element& application, std::function<void(const Element& window)> created) override;
    [[nodiscard]] SubscriptionPtr onWindowClosed(const Element& window,
                                                 std::function<void()> closed) override;
    [[nodiscard]] std::optional<ProcessId> pid(const Element& element) override;
    [[nodiscard]] std::optional<RunningApplication> owner(const Element& element) override;
    /// Returns whether the window manager has left the window where it was.
    [[nodiscard]] bool hasRefused(const Element& window) override;
    /// Calls `corrected` as described for `CorrectionWatch`, and once the window manager has processed a
    /// placement that was late.
    /// Returns null: the window manager carries out a request before it reads the next one.
    [[nodiscard]] SubscriptionPtr writeSeveral() override { return nullptr; }
    [[nodiscard]] SubscriptionPtr
    onCorrected(std::function<void(const Element& window, const Rect& axFrame)> corrected) override;

    /// Calls `refused` after each placement that the window manager has refused.
    [[nodiscard]] SubscriptionPtr onRefusal(std::function<void()> refused);

private:
    [[nodiscard]] std::optional<AttributeValue> applicationAttribute(ProcessId pid,
                                                                     std::string_view attribute);
    [[nodiscard]] std::optional<AttributeValue> focusedWindow(ProcessId pid);
    [[nodiscard]] std::optional<AttributeValue> windowsOf(ProcessId pid);
    [[nodiscard]] std::optional<AttributeValue> windowAttribute(const Element& element,
                                                                std::string_view attribute);
    [[nodiscard]] std::optional<AttributeValue> frameExcess(xcb_window_t window, const WindowFrame& frame);
    /// Returns whether the window exists and still belongs to the process.
    [[nodiscard]] bool isWindowOf(xcb_window_t window, ProcessId pid);
    void finishWrites();
    /// Schedules `reportLate` if `event` shows that the late placements have been processed.
    void note(const Connection::Event& event);
    void reportLate();
    /// Returns whether the last placement was one of this window in this turn, with that outcome.
    [[nodiscard]] bool hasEnded(xcb_window_t window, PlacementOutcome outcome) const;

    Connection& m_connection;
    Monitors& m_monitors;
    ClientWindows& m_windows;
    Applications& m_applications;
    ApplicationWatch& m_watch;
    MainQueuePort& m_queue;
    CorrectionWatch m_corrections;
    Placement m_placement;
    xcb_window_t m_written = XCB_WINDOW_NONE; // the window that `m_wish` is for
    FrameWish m_wish;
    struct {
        xcb_window_t window = XCB_WINDOW_NONE;
        std::uint64_t turn = 0;
        PlacementOutcome outcome = PlacementOutcome::Settled;
    } m_last;                      // the last placement, and the turn in which it was made
    std::set<xcb_window_t> m_late; // the windows whose last placement was late, until they are reported
    Signal<> m_refusals;
    SubscriptionPtr m_endOfTurn;
    SubscriptionPtr m_observer;
    SubscriptionPtr m_report; // the scheduled `reportLate`
};

} // namespace tessarel::x11
