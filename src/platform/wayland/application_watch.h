// SPDX-License-Identifier: MIT

#pragma once

#include "model/signal.h"
#include "model/subscription.h"
#include "platform/wayland/applications.h"
#include "platform/wayland/mirror.h"
#include "ports/desktop/process_id.h"
#include "ports/desktop/running_application.h"
#include "ports/desktop/workspace_port.h"

#include <functional>
#include <map>

namespace tessarel::wayland {

/// Watches applications and windows come and go, driven by the mirror.
///
/// An application is launched when its process gets its first window. It terminates when its last window has
/// closed and the process has exited, which is checked whenever windows come or go.
class ApplicationWatch {
public:
    /// Both references must outlive this object.
    ApplicationWatch(Mirror& mirror, Applications& applications);
    ApplicationWatch(const ApplicationWatch&) = delete;
    ApplicationWatch& operator=(const ApplicationWatch&) = delete;
    ~ApplicationWatch() = default;

    [[nodiscard]] SubscriptionPtr onApplication(ApplicationEvent event,
                                                std::function<void(const RunningApplication&)> handler);
    /// Calls `opened` with every window that process `pid` opens from now on, but for the one with which it
    /// is launched.
    [[nodiscard]] SubscriptionPtr onWindow(ProcessId pid, std::function<void(WindowId)> opened);
    [[nodiscard]] SubscriptionPtr onClosed(WindowId window, std::function<void()> closed);

private:
    void takeStock();
    void handleOpened(WindowId window);
    void handleClosed(WindowId window);
    void handleActivated();
    void terminateEnded();

    Mirror& m_mirror;
    Applications& m_applications;
    std::map<ProcessId, RunningApplication> m_running; ///< as of their launch
    ProcessId m_active = 0;
    std::map<ApplicationEvent, Signal<const RunningApplication&>> m_applicationHandlers;
    Signal<ProcessId, WindowId> m_windowHandlers;
    Signal<WindowId> m_closedHandlers;
    SubscriptionPtr m_ready;
    SubscriptionPtr m_opened;
    SubscriptionPtr m_closed;
    SubscriptionPtr m_activated;
};

} // namespace tessarel::wayland
