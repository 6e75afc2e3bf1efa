// SPDX-License-Identifier: MIT

#pragma once

#include "model/signal.h"
#include "platform/x11/applications/applications.h"
#include "platform/x11/applications/process_start.h"
#include "platform/x11/server/connection.h"
#include "platform/x11/windows/client_windows.h"
#include "ports/desktop/workspace_port.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace tessarel::x11 {

/// Watches applications and windows come and go, driven by `_NET_CLIENT_LIST` and `_NET_ACTIVE_WINDOW`.
/// Without a change of these properties it sends no requests.
///
/// An application is launched when its process gets its first managed window. It terminates when its last
/// window has closed and the process has exited, which is checked whenever windows come or go. A process that
/// is not visible from here (see `processStart`) terminates when its last window closes.
///
/// When the window manager is replaced, the client list is empty for a while. Windows that stay mapped keep
/// their identity then, and their applications are not launched again.
class ApplicationWatch {
public:
    /// Returns when a process was started, like `processStart`. Tests replace it.
    using StartOf = std::function<std::optional<std::uint64_t>(ProcessId)>;

    /// All referenced objects must outlive the watch.
    ApplicationWatch(Connection& connection, ClientWindows& windows, Applications& applications,
                     StartOf startOf = processStart);
    ApplicationWatch(const ApplicationWatch&) = delete;
    ApplicationWatch& operator=(const ApplicationWatch&) = delete;
    ~ApplicationWatch() = default;

    /// Calls `handler` on each `event`, until the returned subscription is destroyed. The first subscription
    /// of any kind starts the watch; applications that already run are not reported as launched.
    [[nodiscard]] SubscriptionPtr onApplication(ApplicationEvent event,
                                                std::function<void(const RunningApplication&)> handler);
    /// Calls `opened` with every window that process `pid` opens from now on. The windows with which a
    /// process is launched are part of the `Launched` event and not reported here.
    [[nodiscard]] SubscriptionPtr onWindow(ProcessId pid, std::function<void(xcb_window_t)> opened);
    /// Calls `closed` when the managed window `window` closes.
    [[nodiscard]] SubscriptionPtr onClosed(xcb_window_t window, std::function<void()> closed);

private:
    struct Window {
        ProcessId pid = 0;    ///< 0 when unknown
        bool isListed = true; ///< in `_NET_CLIENT_LIST`; false while no window manager runs
    };
    struct Process {
        RunningApplication application;     ///< as of the launch
        std::optional<std::uint64_t> start; ///< empty when the process is not visible from here
    };
    struct Changes;

    void begin();
    void note(const Connection::Event& event);
    void follow(const Connection::Event& event);
    [[nodiscard]] Changes update();
    [[nodiscard]] std::vector<xcb_window_t> takeClosed(const std::vector<xcb_window_t>& listed);
    [[nodiscard]] std::unordered_set<ProcessId> ended() const;
    [[nodiscard]] std::vector<xcb_window_t> takeOpened(const std::vector<xcb_window_t>& listed);
    void sortIn(const std::vector<xcb_window_t>& opened, Changes& changes);
    void launch(ProcessId pid, const std::vector<xcb_window_t>& windows, Changes& changes);
    void terminateEnded(Changes& changes);
    void tell(const Changes& changes);
    void followActive();

    Connection& m_connection;
    ClientWindows& m_windows;
    Applications& m_applications;
    StartOf m_startOf;
    bool m_isWanted = false;   ///< there was at least one subscription
    bool m_isOutdated = false; ///< the client list has changed since the last update
    std::unordered_map<xcb_window_t, Window> m_known;
    std::map<ProcessId, Process> m_processes;
    ProcessId m_active = 0; ///< owner of the window that was active last; 0 when unknown
    std::map<ApplicationEvent, Signal<const RunningApplication&>> m_applicationHandlers;
    Signal<ProcessId, xcb_window_t> m_windowHandlers;
    Signal<xcb_window_t> m_closedHandlers;
    SubscriptionPtr m_observer;
    SubscriptionPtr m_handler;
};

} // namespace tessarel::x11
