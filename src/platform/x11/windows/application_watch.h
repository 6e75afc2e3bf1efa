#pragma once

#include "platform/x11/server/callback_list.h"
#include "platform/x11/server/connection.h"
#include "platform/x11/windows/applications.h"
#include "platform/x11/windows/client_windows.h"
#include "platform/x11/windows/process_start.h"
#include "ports/workspace_port.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace tessarel::x11 {

/// Applications and windows as they come and go, told by the lists that the window manager keeps: without a
/// change of these nothing is asked and nobody woken.
///
/// An application is launched with the first managed window of its process. It has terminated when its
/// process has ended, which is looked at whenever windows come or go; of a process that cannot be seen from
/// here, when its last window goes. A window stays the same one, and its application is not launched again,
/// while there is no window manager and when the next one takes it over.
class ApplicationWatch {
public:
    /// Tells when a process was started, as `processStart` does.
    using StartOf = std::function<std::optional<std::uint64_t>(ProcessId)>;

    ApplicationWatch(Connection& connection, ClientWindows& windows, Applications& applications,
                     StartOf startOf = processStart);
    ApplicationWatch(const ApplicationWatch&) = delete;
    ApplicationWatch& operator=(const ApplicationWatch&) = delete;
    ~ApplicationWatch() = default;

    [[nodiscard]] SubscriptionPtr onApplication(ApplicationEvent event,
                                                std::function<void(const RunningApplication&)> handler);
    /// Calls `opened` with every window that process `pid`, which runs already, opens from now on.
    [[nodiscard]] SubscriptionPtr onWindow(ProcessId pid, std::function<void(xcb_window_t)> opened);
    /// Calls `closed` when `window`, which is managed, closes.
    [[nodiscard]] SubscriptionPtr onClosed(xcb_window_t window, std::function<void()> closed);

private:
    struct Window {
        ProcessId pid = 0;
        bool isListed = true; ///< by the manager; false while there is none
    };
    struct Process {
        RunningApplication application;
        std::optional<std::uint64_t> start; ///< empty when it cannot be seen from here
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
    bool m_isWanted = false; ///< somebody has asked at least once
    bool m_isOutdated = false;
    std::unordered_map<xcb_window_t, Window> m_known;
    std::map<ProcessId, Process> m_processes;
    ProcessId m_active = 0;
    std::map<ApplicationEvent, CallbackList<const RunningApplication&>> m_applicationHandlers;
    CallbackList<ProcessId, xcb_window_t> m_windowHandlers;
    CallbackList<xcb_window_t> m_closedHandlers;
    SubscriptionPtr m_observer;
    SubscriptionPtr m_handler;
};

} // namespace tessarel::x11
