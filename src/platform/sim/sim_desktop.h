#pragma once

#include "platform/sim/sim_accessibility.h"
#include "platform/sim/sim_displays.h"
#include "platform/sim/sim_hot_keys.h"
#include "platform/sim/sim_local_keys.h"
#include "platform/sim/sim_login_item.h"
#include "platform/sim/sim_main_queue.h"
#include "platform/sim/sim_mouse.h"
#include "platform/sim/sim_overlay.h"
#include "platform/sim/sim_preferences.h"
#include "platform/sim/sim_services.h"
#include "platform/sim/sim_single_instance.h"
#include "platform/sim/sim_state.h"
#include "platform/sim/sim_status_item.h"
#include "platform/sim/sim_url_loading.h"
#include "platform/sim/sim_wall_clock.h"
#include "platform/sim/sim_window_list.h"
#include "platform/sim/sim_workspace.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tessarel::sim {

/// A display to connect.
struct ScreenOptions {
    Rect frame = {};    ///< in screen coordinates: bottom-left origin, y up
    double menuBar = 0; ///< height of the bar along its top edge
    double dock = 0;    ///< height of the dock along its bottom edge
    double leftBar = 0; ///< width of the bar along its left edge
    double rightBar = 0;
};

/// A whole desktop in memory that answers like the real thing and behaves: its ports, and what a user and
/// other programs do to it. It is empty at first, and time stands still until `advance`.
///
/// Rectangles of windows are in accessibility coordinates. Numbers of windows and processes handed to it must
/// be of ones that exist, unless stated.
class SimDesktop {
public:
    SimDesktop() = default;
    SimDesktop(const SimDesktop&) = delete;
    SimDesktop& operator=(const SimDesktop&) = delete;

    // Displays. The first one connected is the primary one.
    Screen addScreen(const ScreenOptions& options);
    /// The bar along the top edge of the primary display is `height` high from now on.
    void setMenuBar(double height);
    /// The display with the id of `screen` has its frames from now on.
    void changeScreen(const Screen& screen);
    void removeScreen(std::uint64_t id);
    /// Makes the display the primary one; the frames of all others are then relative to it.
    void makePrimary(std::uint64_t id);
    /// What the displays port calls the main screen from now on, whatever has the focus; empty: that of the
    /// focused window again.
    void setMainScreen(const std::optional<Screen>& screen) { m_state.mainScreen = screen; }

    // Programs.
    /// The application is installed and goes by `displayName`; it need not run.
    void install(const std::string& bundleIdentifier, const std::string& displayName) {
        m_state.installed[bundleIdentifier] = displayName;
    }
    ProcessId launch(const SimApplication& application);
    /// The system gives the new process the number of one that has ended.
    void launchAs(ProcessId pid, const SimApplication& application) {
        m_state.launchApplication(pid, application);
    }
    SimApplication& application(ProcessId pid) { return m_state.applications.at(pid); }
    /// Brings the program to the front with whatever window of it had the focus last.
    void activate(ProcessId pid) { m_state.activateApplication(pid); }
    /// No program is in front.
    void deactivateAll() { m_state.frontmost.reset(); }
    void kill(ProcessId pid) { m_state.endApplication(pid); }

    // Windows.
    /// Opens a window of the program called `bundleIdentifier`, which is launched if need be, and gives it
    /// the focus.
    WindowId openWindow(const std::string& bundleIdentifier, const Rect& axFrame);
    WindowId openWindow(ProcessId pid, const SimWindow& window);
    /// Opens a window behind all others. The program in front stays there, and its window keeps the focus.
    WindowId openWindowBehind(ProcessId pid, const SimWindow& window);
    /// Opens a window of the program under test and gives it the focus.
    WindowId openOwnWindow(const Rect& axFrame);
    SimWindow& window(WindowId id);
    /// The program that the window belongs to.
    SimApplication& applicationOf(WindowId id) { return application(window(id).pid); }
    [[nodiscard]] Element element(WindowId id) { return m_accessibility.window(id); }
    /// The window's element has this key from now on, like a hash that another window may share.
    void setKey(WindowId id, std::uintptr_t key) { m_state.windowKeys[id] = key; }
    /// Where the window is seen now.
    [[nodiscard]] Rect frame(WindowId id);
    /// The user moves or resizes the window.
    void drag(WindowId id, const Rect& axFrame);
    void focus(WindowId id);
    void close(WindowId id) { m_state.closeWindow(id); }

    /// The user presses a key together with modifiers, bits as in `HotKeyRequest`. Monitors of the program
    /// under test have it while a window of that program is in front, hot keys otherwise.
    void pressKeys(std::uint32_t keyCode, std::uint32_t mods);

    /// The reads and writes of attributes since the last call, in order.
    [[nodiscard]] std::vector<std::string> takeRequests();
    /// Those of them that are writes.
    [[nodiscard]] std::vector<std::string> takeWrites();

    /// The loop runs for `duration`, and with it whatever falls due.
    void advance(SimClock::Duration duration) { m_state.clock.advance(duration); }
    [[nodiscard]] SimClock& clock() { return m_state.clock; }

    [[nodiscard]] int beeps() const { return m_alertSound.beeps; }

    // Ports.
    [[nodiscard]] SimAccessibility& accessibility() { return m_accessibility; }
    [[nodiscard]] SimAlertSound& alertSound() { return m_alertSound; }
    [[nodiscard]] SimAlerts& alerts() { return m_alerts; }
    [[nodiscard]] SimDisplays& displays() { return m_displays; }
    [[nodiscard]] SimHotKeys& hotKeys() { return m_hotKeys; }
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
    /// A copy of the program.
    [[nodiscard]] SimSingleInstance makeCopy() { return SimSingleInstance(m_instanceHolder); }

private:
    SimState m_state;
    SimPreferencesStorage m_preferencesStorage;
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
