#pragma once

#include "app/ports.h"
#include "app/services.h"
#include "app/settings_window.h"
#include "app/status_item.h"
#include "app/status_menu.h"
#include "model/subscription.h"
#include "ports/menu.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace tessarel {

/// What the application does when it starts, when its menu is used and when it ends.
///
/// Its end lets go of everything that it has claimed of the desktop.
class AppDelegate {
public:
    enum class Launch {
        Running,
        AnotherCopyRuns, ///< that copy has been told; nothing has been read, created or claimed
    };

    /// From the choice of an action in the menu to the action: time for the menu to close and for the window
    /// below it to get the focus back.
    static constexpr std::chrono::milliseconds kMenuActionDelay{150};

    /// Without `makeSettingsWindow` the commands that concern the settings window do nothing.
    AppDelegate(const Ports& ports, SettingsWindowFactory makeSettingsWindow);
    AppDelegate(const AppDelegate&) = delete;
    AppDelegate& operator=(const AppDelegate&) = delete;
    ~AppDelegate();

    /// The launch sequence; call it once. Messages to the user and the look for a new version wait for the
    /// loop to run.
    [[nodiscard]] Launch applicationDidFinishLaunching();

    /// The user has started the program once more.
    void applicationShouldHandleReopen();

    /// Carries out the command of a row of the status menu. A tag that means nothing (any more) is ignored.
    void itemSelected(const MenuItem& item);

private:
    void greetUser();
    void welcome();

    void runMenuAction(int tag);
    void applyLayout(int tag);
    void togglePause();
    void grantAccess();
    void openSettings();
    [[nodiscard]] std::function<void()> whileAlive(std::function<void()> work) const;

    Ports m_ports;
    SettingsWindowFactory m_makeSettingsWindow;
    SubscriptionPtr m_instance;
    std::optional<Services> m_services; // none before this copy has the desktop
    std::optional<StatusMenu> m_statusMenu;
    std::optional<StatusItem> m_statusItem;
    SubscriptionPtr m_settingsObserver;
    std::unique_ptr<SettingsWindow> m_settingsWindow; // none before it is first asked for
    std::shared_ptr<void> m_alive; // shared with no one: work still due looks whether it exists
};

} // namespace tessarel
