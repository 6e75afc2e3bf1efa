// SPDX-License-Identifier: MIT

#pragma once

#include "platform/sim/time/sim_clock.h"
#include "platform/sim/windows/sim_application.h"
#include "platform/sim/windows/sim_observers.h"
#include "platform/sim/windows/sim_window.h"
#include "ports/desktop/accessibility_port.h"
#include "ports/desktop/displays_port.h"
#include "ports/desktop/process_id.h"
#include "ports/desktop/workspace_port.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace tessarel::sim {

/// The state of the simulated desktop, which all of its ports share.
struct SimState {
    /// The process id of the program under test.
    static constexpr ProcessId kOwnPid = 4242;

    SimClock clock;
    std::vector<Screen> screens;      ///< the primary one first
    std::optional<Screen> mainScreen; ///< replaces the display of the focused window as the main screen
    std::map<ProcessId, SimApplication> applications;
    std::vector<SimWindow> windows; ///< front to back
    /// Keys of elements by window, where they differ from the window's id.
    std::map<WindowId, std::uintptr_t> windowKeys;
    std::optional<ProcessId> frontmost;           ///< the application in front
    std::map<std::string, std::string> installed; ///< names of applications, by bundle identifier
    std::vector<std::string> requests;            ///< the record of accessibility requests, in order
    SimObservers<ApplicationEvent, RunningApplication> applicationObservers;
    SimObservers<ProcessId, Element> windowObservers; ///< by the process that opens the window
    SimObservers<WindowId, WindowId> closeObservers;

    /// Returns the application of process `pid`, or null.
    [[nodiscard]] SimApplication* application(ProcessId pid);
    /// Returns the window with the id `id`, or null.
    [[nodiscard]] SimWindow* window(WindowId id);
    /// Returns the key of a window's element, even if the window has closed.
    [[nodiscard]] std::uintptr_t windowKey(WindowId id) const;
    /// Returns the frontmost visible window at a point, or null.
    [[nodiscard]] SimWindow* windowAt(const Point& axPoint);
    /// Returns the whole area of a display in accessibility coordinates.
    [[nodiscard]] Rect axFrame(const Screen& screen) const;
    /// Returns the display that contains a point, otherwise the primary one; null if there is no display.
    [[nodiscard]] const Screen* screenAt(const Point& axPoint) const;

    /// Returns the application of process `pid` as the workspace port reports it.
    [[nodiscard]] std::optional<RunningApplication> running(ProcessId pid);
    /// Returns the application that the window belongs to; empty if the window does not exist.
    [[nodiscard]] std::optional<RunningApplication> owner(WindowId id);

    /// Adds a running application and calls the observers.
    void launchApplication(ProcessId pid, const SimApplication& application);
    /// Brings an application to the front and calls the observers, unless it is in front already.
    void activateApplication(ProcessId pid);
    /// Removes a window and calls the observers.
    void closeWindow(WindowId id);
    /// Removes an application with its windows and calls the observers.
    void endApplication(ProcessId pid);
};

} // namespace tessarel::sim
