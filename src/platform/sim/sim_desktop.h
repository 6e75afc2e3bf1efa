// SPDX-License-Identifier: MIT

#pragma once

#include "platform/sim/sim_hot_keys.h"
#include "platform/sim/sim_key_names.h"
#include "platform/sim/sim_local_keys.h"
#include "platform/sim/sim_login_item.h"
#include "platform/sim/sim_mouse.h"
#include "platform/sim/sim_overlay.h"
#include "platform/sim/sim_preferences.h"
#include "platform/sim/sim_services.h"
#include "platform/sim/sim_single_instance.h"
#include "platform/sim/sim_status_item.h"
#include "platform/sim/sim_url_loading.h"
#include "platform/sim/time/sim_main_queue.h"
#include "platform/sim/time/sim_wall_clock.h"
#include "platform/sim/windows/sim_accessibility.h"
#include "platform/sim/windows/sim_displays.h"
#include "platform/sim/windows/sim_state.h"
#include "platform/sim/windows/sim_window_list.h"
#include "platform/sim/windows/sim_workspace.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tessarel::sim {

/// A display, and the space that bars reserve on it.
struct ScreenOptions {
    Rect frame = {};     ///< in screen coordinates: bottom-left origin, y up
    double menuBar = 0;  ///< height of the bar along the top edge
    double dock = 0;     ///< height of the dock along the bottom edge
    double leftBar = 0;  ///< width of the bar along the left edge
    double rightBar = 0; ///< width of the bar along the right edge
};

/// A desktop in memory: all ports, and the means for a test to act as the user and as other programs.
///
/// It is empty at first, and time stands still until `advance`. Frames of windows are in accessibility
/// coordinates. Window ids and process ids that are passed must exist, unless stated otherwise.
class SimDesktop {
public:
    SimDesktop() = default;
    SimDesktop(const SimDesktop&) = delete;
    SimDesktop& operator=(const SimDesktop&) = delete;

    // Displays

    /// Connects a display with a new id. The first one is the primary one.
    Screen addScreen(const ScreenOptions& options);
    /// Sets the height of the bar along the top edge of the primary display.
    void setMenuBar(double height);
    /// Replaces the frames of the display that has the id of `screen`. Ignores an unknown id.
    void changeScreen(const Screen& screen);
    /// Disconnects a display. Ignores an unknown id.
    void removeScreen(std::uint64_t id);
    /// Makes a display the primary one and moves the origin of all frames to it. Ignores an unknown id.
    void makePrimary(std::uint64_t id);
    /// Sets the main screen of the displays port. If empty, it is that of the focused window, as initially.
    void setMainScreen(const std::optional<Screen>& screen) { m_state.mainScreen = screen; }

    // Applications

    /// Installs an application under the name `displayName`, without launching it.
    void install(const std::string& bundleIdentifier, const std::string& displayName) {
        m_state.installed[bundleIdentifier] = displayName;
    }
    /// Launches an application as a new process, whose id is returned.
    ProcessId launch(const SimApplication& application);
    /// Launches an application with the process id of one that has ended, because systems reuse process ids.
    void launchAs(ProcessId pid, const SimApplication& application) {
        m_state.launchApplication(pid, application);
    }
    /// Returns the application of a process, which the test may change.
    SimApplication& application(ProcessId pid) { return m_state.applications.at(pid); }
    /// Brings an application to the front. Its window that had the focus last gets it again.
    void activate(ProcessId pid) { m_state.activateApplication(pid); }
    /// Leaves no application in front.
    void deactivateAll() { m_state.frontmost.reset(); }
    /// Ends a process and closes its windows.
    void kill(ProcessId pid) { m_state.endApplication(pid); }

    // Windows

    /// Opens a window of the application `bundleIdentifier` and gives it the focus. Launches the application
    /// if it does not run.
    WindowId openWindow(const std::string& bundleIdentifier, const Rect& axFrame);
    /// Opens a window of a process and gives it the focus.
    WindowId openWindow(ProcessId pid, const SimWindow& window);
    /// Opens a window behind all others. The application in front and the focused window stay the same.
    WindowId openWindowBehind(ProcessId pid, const SimWindow& window);
    /// Opens a window of the program under test and gives it the focus.
    WindowId openOwnWindow(const Rect& axFrame);
    /// Returns a window, which the test may change. Throws `std::out_of_range` if it does not exist.
    SimWindow& window(WindowId id);
    /// Returns the application that a window belongs to.
    SimApplication& applicationOf(WindowId id) { return application(window(id).pid); }
    /// Returns the accessibility element of a window.
    [[nodiscard]] Element element(WindowId id) { return m_accessibility.window(id); }
    /// Sets the key of a window's element. Two windows may have the same key, as hashes may collide.
    void setKey(WindowId id, std::uintptr_t key) { m_state.windowKeys[id] = key; }
    /// Returns the frame in which a window is seen now.
    [[nodiscard]] Rect frame(WindowId id);
    /// Moves and resizes a window as the user would.
    void drag(WindowId id, const Rect& axFrame);
    /// Brings a window and its application to the front and gives it the focus. Ignores an unknown id.
    void focus(WindowId id);
    /// Closes a window.
    void close(WindowId id) { m_state.closeWindow(id); }

    /// Presses a key together with modifiers, whose bits are those of `HotKeyRequest`. The key goes to the
    /// monitors of the program under test if that program is in front and has one, otherwise to the hot keys.
    void pressKeys(std::uint32_t keyCode, std::uint32_t mods);

    /// Returns the recorded accessibility requests since the last call, in order, and clears the record.
    [[nodiscard]] std::vector<std::string> takeRequests();
    /// Like `takeRequests`, but returns only the writes. The whole record is cleared.
    [[nodiscard]] std::vector<std::string> takeWrites();

    /// Runs the event loop for `duration` of simulated time.
    void advance(SimClock::Duration duration) { m_state.clock.advance(duration); }
    [[nodiscard]] SimClock& clock() { return m_state.clock; }

    /// Returns how often the alert sound has been played.
    [[nodiscard]] int beeps() const { return m_alertSound.beeps; }

    // Ports

    [[nodiscard]] SimAccessibility& accessibility() { return m_accessibility; }
    [[nodiscard]] SimAlertSound& alertSound() { return m_alertSound; }
    [[nodiscard]] SimAlerts& alerts() { return m_alerts; }
    [[nodiscard]] SimDisplays& displays() { return m_displays; }
    [[nodiscard]] SimHotKeys& hotKeys() { return m_hotKeys; }
    [[nodiscard]] SimKeyNames& keyNames() { return m_keyNames; }
    [[nodiscard]] SimLocalKeys& localKeys() { return m_localKeys; }
    [[nodiscard]] SimLoginItem& loginItem() { return m_loginItem; }
    [[nodiscard]] SimMainMenu& mainMenu() { return m_mainMenu; }
    [[nodiscard]] SimMainQueue& mainQueue() { return m_mainQueue; }
    [[nodiscard]] SimMouse& mouse() { return m_mouse; }
    [[nodiscard]] SimOpenPanel& openPanel() { return m_openPanel; }
    [[nodiscard]] SimOpenUrl& openUrl() { return m_openUrl; }
    [[nodiscard]] SimOverlay& overlay() { return m_overlay; }
    [[nodiscard]] SimOwnApplication& ownApplication() { return m_ownApplication; }
    [[nodiscard]] SimPreferences& preferences() { return m_preferences; }
    [[nodiscard]] SimPreferencesStorage& preferencesStorage() { return m_preferencesStorage; }
    [[nodiscard]] SimStatusItem& statusItem() { return m_statusItem; }
    [[nodiscard]] SimTrust& trust() { return m_trust; }
    [[nodiscard]] SimUrlLoading& urlLoading() { return m_urlLoading; }
    [[nodiscard]] SimWallClock& wallClock() { return m_wallClock; }
    [[nodiscard]] SimWindowList& windowList() { return m_windowList; }
    [[nodiscard]] SimWorkspace& workspace() { return m_workspace; }
    /// Returns the port of a new copy of the program. All copies compete for the same desktop.
    [[nodiscard]] SimSingleInstance makeCopy() { return SimSingleInstance(m_instanceHolder); }

private:
    SimState m_state;
    SimPreferencesStorage m_preferencesStorage{m_state.clock};
    std::shared_ptr<SimInstanceHolder> m_instanceHolder = std::make_shared<SimInstanceHolder>();
    std::uint64_t m_lastScreen = 0;
    std::uint32_t m_lastWindow = 0;
    ProcessId m_lastPid = 100;

    WindowId add(ProcessId pid, const SimWindow& window);

    SimAccessibility m_accessibility{m_state};
    SimAlertSound m_alertSound;
    SimAlerts m_alerts;
    SimDisplays m_displays{m_state};
    SimHotKeys m_hotKeys;
    SimKeyNames m_keyNames;
    SimLocalKeys m_localKeys;
    SimLoginItem m_loginItem;
    SimMainMenu m_mainMenu;
    SimMainQueue m_mainQueue{m_state.clock};
    SimMouse m_mouse{m_state};
    SimOpenPanel m_openPanel;
    SimOpenUrl m_openUrl;
    SimOverlay m_overlay;
    SimOwnApplication m_ownApplication;
    SimPreferences m_preferences{m_preferencesStorage};
    SimStatusItem m_statusItem;
    SimTrust m_trust;
    SimUrlLoading m_urlLoading{m_state.clock};
    SimWallClock m_wallClock{m_state.clock};
    SimWindowList m_windowList{m_state};
    SimWorkspace m_workspace{m_state};
};

} // namespace tessarel::sim
