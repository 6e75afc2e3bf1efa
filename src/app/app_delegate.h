// SPDX-License-Identifier: MIT

#pragma once

#include "app/command.h"
#include "app/command_runner.h"
#include "app/ports.h"
#include "app/services.h"
#include "app/settings_follower.h"
#include "app/settings_window.h"
#include "app/status_item.h"
#include "app/status_menu.h"
#include "model/subscription.h"
#include "ports/deferred_work.h"
#include "ports/menu.h"

#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tessarel {

/// Runs the application: the launch sequence and the commands of the menu.
///
/// The destructor releases everything that the program has registered with the desktop.
class AppDelegate {
public:
    /// Result of the launch sequence.
    enum class Launch {
        Running,
        /// The other copy has been notified; nothing has been read, created or registered.
        AnotherCopyRuns,
        /// Neither this copy nor the other one can help the user; see `launchFailure`.
        Failed,
    };

    /// Delay between choosing an action in the menu and running it, so that the menu can close and the window
    /// below can get the focus back.
    static constexpr std::chrono::milliseconds kMenuActionDelay{150};

    /// The ports must outlive the delegate. Without `makeSettingsWindow`, commands for the settings window do
    /// nothing.
    AppDelegate(const Ports& ports, SettingsWindowFactory makeSettingsWindow);
    AppDelegate(const AppDelegate&) = delete;
    AppDelegate& operator=(const AppDelegate&) = delete;
    ~AppDelegate();

    /// Runs the launch sequence. Call once. The update check, the welcome message
    /// and the request for the permission wait for the event loop.
    [[nodiscard]] Launch applicationDidFinishLaunching();

    /// Returns why the launch has failed, for the user: one sentence without a capital letter and a full
    /// stop.
    [[nodiscard]] const std::string& launchFailure() const { return m_launchFailure; }

    /// Opens the settings window. Called when the user starts the program again.
    void applicationShouldHandleReopen();

    /// Carries out a command of the command line that another process has sent.
    [[nodiscard]] CommandReply runCommand(const std::vector<std::string>& words);

    /// Runs the command of a row of the status menu. Ignores unknown tags, such as that of a layout that has
    /// been deleted meanwhile.
    void itemSelected(const MenuItem& item);

private:
    [[nodiscard]] Launch claimDesktop();
    void greetUser();
    void promptForPermission();
    void promptOnLoss();
    void welcome(bool isStatusItemShown);
    [[nodiscard]] std::vector<std::string> takenShortcuts();
    void welcomed(std::optional<std::size_t> button);

    [[nodiscard]] Menu currentMenu();
    void runMenuAction(int tag);
    void applyLayout(int tag);
    void applyZones(std::vector<Zone> zones);
    void setPaused(bool paused);
    /// Explains how to grant the permission and opens the place to do so.
    void grantAccess();
    void openSettings();
    /// Shows the current settings in the settings window, which does not observe the store.
    void refreshSettingsWindow();

    Ports m_ports;
    SettingsWindowFactory m_makeSettingsWindow;
    SubscriptionPtr m_instance;
    std::string m_launchFailure;
    /// Empty until this copy has claimed the desktop.
    std::optional<Services> m_services;
    std::optional<StatusMenu> m_statusMenu;
    std::optional<StatusItem> m_statusItem;
    std::optional<CommandRunner> m_commands;
    SubscriptionPtr m_settingsObserver;
    std::optional<SettingsFollower> m_settingsFollower;
    /// Created on first use.
    std::unique_ptr<SettingsWindow> m_settingsWindow;
    /// Not null while the welcome message is shown.
    SubscriptionPtr m_welcome;
    SubscriptionPtr m_trustObserver;
    /// Work for the event loop, cancelled when this object is destroyed.
    DeferredWork m_later;
};

} // namespace tessarel
