#pragma once

#include "platform/sim/sim_application.h"
#include "platform/sim/sim_clock.h"
#include "platform/sim/sim_observers.h"
#include "platform/sim/sim_window.h"
#include "ports/accessibility_port.h"
#include "ports/displays_port.h"
#include "ports/process_id.h"
#include "ports/workspace_port.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace tessarel::sim {

/// What the simulated desktop consists of; its ports and the test that plays on it share it.
struct SimState {
    /// The process id of the program under test.
    static constexpr ProcessId kOwnPid = 4242;

    SimClock clock;
    std::vector<Screen> screens;      ///< the primary one first
    std::optional<Screen> mainScreen; ///< said instead of the display of the focused window
    std::map<ProcessId, SimApplication> applications;
    std::vector<SimWindow> windows;                ///< front to back
    std::map<WindowId, std::uintptr_t> windowKeys; ///< of elements whose key is not their window's id
    std::optional<ProcessId> frontmost;
    std::map<std::string, std::string> installed; ///< names of applications, by bundle identifier
    std::vector<std::string> requests;            ///< reads and writes of attributes, in order
    SimObservers<ApplicationEvent, RunningApplication> applicationObservers;
    SimObservers<ProcessId, Element> windowObservers; ///< by the process that opens the window
    SimObservers<WindowId, WindowId> closeObservers;

    /// The application of process `pid`, or null.
    [[nodiscard]] SimApplication* application(ProcessId pid);
    /// The window with number `id`, or null.
    [[nodiscard]] SimWindow* window(WindowId id);
    /// The key of the window's element, whether it is still open or not.
    [[nodiscard]] std::uintptr_t windowKey(WindowId id) const;
    /// The window on top at the point, or null.
    [[nodiscard]] SimWindow* windowAt(const Point& axPoint);
    /// The screen's whole area in accessibility coordinates.
    [[nodiscard]] Rect axFrame(const Screen& screen) const;
    /// The display that shows the point, else the primary one; null when there is none.
    [[nodiscard]] const Screen* screenAt(const Point& axPoint) const;

    /// The application of process `pid` as the workspace knows it.
    [[nodiscard]] std::optional<RunningApplication> running(ProcessId pid);

    void launchApplication(ProcessId pid, const SimApplication& application);
    /// Brings the application to the front, with whatever window of it had the focus last.
    void activateApplication(ProcessId pid);
    void closeWindow(WindowId id);
    void endApplication(ProcessId pid);
};

} // namespace tessarel::sim
