// SPDX-License-Identifier: MIT

#pragma once

#include "model/signal.h"
#include "platform/wayland/application_watch.h"
#include "platform/wayland/applications.h"
#include "platform/wayland/compositor.h"
#include "platform/wayland/mirror.h"
#include "platform/wayland/placement.h"
#include "ports/desktop/accessibility_port.h"
#include "ports/main_queue_port.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string_view>

namespace tessarel::wayland {

/// Other programs' windows, read from the mirror and moved through the compositor.
///
/// An element is a process or a window of a process. Writes of position and size to a window are collected
/// and sent as one request when that window is read next, or by the event loop. A read after a write returns
/// the settled frame; position and size are empty when the program has not taken its new size in time. This
/// program's own windows are never returned.
class Accessibility : public AccessibilityPort {
public:
    /// All referenced objects must outlive this one.
    Accessibility(Mirror& mirror, Compositor& compositor, Applications& applications, ApplicationWatch& watch,
                  MainQueuePort& queue);

    [[nodiscard]] Element application(ProcessId pid) override;
    [[nodiscard]] Element systemWide() override;
    /// Does nothing. Reads send nothing, and the wait for a placement has a limit of its own.
    void setMessagingTimeout(const Element& element, std::chrono::milliseconds limit) override;
    [[nodiscard]] std::optional<Element> elementAtPosition(const Element& within,
                                                           const Point& axPoint) override;
    [[nodiscard]] std::optional<AttributeValue> copyAttribute(const Element& element,
                                                              std::string_view attribute) override;
    /// Collects a write of the position or the size, and ignores all others.
    void setAttribute(const Element& element, std::string_view attribute,
                      const AttributeValue& value) override;
    [[nodiscard]] bool canExpress(const Rect& axFrame) override;
    [[nodiscard]] std::uintptr_t key(const Element& element) override;
    [[nodiscard]] SubscriptionPtr
    onWindowCreated(const Element& application, std::function<void(const Element& window)> created) override;
    [[nodiscard]] SubscriptionPtr onWindowClosed(const Element& window,
                                                 std::function<void()> closed) override;
    [[nodiscard]] std::optional<ProcessId> pid(const Element& element) override;
    [[nodiscard]] std::optional<RunningApplication> owner(const Element& window) override;
    /// Returns false: a floating compositor refuses no frame.
    [[nodiscard]] bool hasRefused(const Element& window) override;
    /// All windows are sent before any is waited for.
    [[nodiscard]] SubscriptionPtr writeSeveral() override;
    /// A frame that the desktop requests after the last write, as for one of its own keys, does not count
    /// either, and ends the time.
    [[nodiscard]] SubscriptionPtr
    onCorrected(std::function<void(const Element& window, const Rect& axFrame)> corrected) override;

private:
    /// A write to a window whose effect is still of interest.
    struct Write {
        MainQueuePort::TimePoint time; ///< of the write, or when the window has settled if that was late
        bool isUnread = false;         ///< whether the window had not taken its frame when it was read
    };

    void frameChanged(WindowId window, const Rect& frame);
    void endSeveral();
    void sendCorrected(WindowId id, const Rect& frame);
    [[nodiscard]] bool isOfInterest(const Write& write) const;
    [[nodiscard]] std::optional<AttributeValue> applicationAttribute(ProcessId pid,
                                                                     std::string_view attribute) const;
    [[nodiscard]] std::optional<AttributeValue> windowAttribute(const Element& element,
                                                                std::string_view attribute) const;

    Mirror& m_mirror;
    Applications& m_applications;
    ApplicationWatch& m_watch;
    MainQueuePort& m_queue;
    Placement m_placement;
    std::map<WindowId, Write> m_writes;
    Signal<const Element&, const Rect&> m_corrected;
    SubscriptionPtr m_frameChanges;
    SubscriptionPtr m_replacements;
    SubscriptionPtr m_userMoves;
};

} // namespace tessarel::wayland
