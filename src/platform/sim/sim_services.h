#pragma once

#include "ports/alert_sound_port.h"
#include "ports/alerts_port.h"
#include "ports/application_port.h"
#include "ports/main_menu_port.h"
#include "ports/open_panel_port.h"
#include "ports/open_url_port.h"
#include "ports/trust_port.h"

#include <cstddef>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tessarel::sim {

/// Counts what would have been heard.
class SimAlertSound : public AlertSoundPort {
public:
    void beep() override { ++beeps; }

    int beeps = 0;
};

/// A user who answers messages as told beforehand, and closes them without a button when not told.
class SimAlerts : public AlertsPort {
public:
    std::size_t runModal(const Alert& alert) override;
    std::optional<std::string> runModalForText(const Alert& alert) override;

    std::function<void()> whileShown; ///< called while a message is up
    std::vector<Alert> shown;         ///< in order, those that ask for a text too
    std::deque<std::size_t> answers;  ///< buttons that the user will press, next one first
    std::deque<std::string> texts;    ///< what the user will type and accept; not told, nothing is accepted
};

/// Counts what the program has had the system do with it.
class SimOwnApplication : public ApplicationPort {
public:
    void activate() override { ++activations; }
    void terminate() override { ++terminations; }

    int activations = 0;
    int terminations = 0;
};

/// Keeps the main menu that was set last.
class SimMainMenu : public MainMenuPort {
public:
    void setMainMenu(const std::vector<MainMenu>& newMenus) override { menus = newMenus; }

    std::vector<MainMenu> menus;
};

/// A user who chooses applications as told beforehand, and closes the panel when not told.
class SimOpenPanel : public OpenPanelPort {
public:
    std::optional<std::string> chooseApplication(const std::string& prompt) override;

    std::vector<std::string> prompts;               ///< of the panels that were shown, in order
    std::deque<std::optional<std::string>> choices; ///< that the user will make, next one first
};

/// Keeps the addresses that would have been opened.
class SimOpenUrl : public OpenUrlPort {
public:
    void open(const std::string& url) override { opened.push_back(url); }

    std::vector<std::string> opened; ///< in order
};

/// A system that trusts the program, or not.
class SimTrust : public TrustPort {
public:
    [[nodiscard]] bool isTrusted() override { return trusted; }
    void prompt() override {
        ++promptCalls;
        prompts += trusted ? 0 : 1;
    }
    void openSettings() override {
        ++settingsOpened;
        promptsBeforeSettings = prompts;
    }

    bool trusted = true;
    int promptCalls = 0; ///< how often the program has asked for it, needed or not
    int prompts = 0;     ///< how often the user has been told what to do
    int settingsOpened = 0;
    int promptsBeforeSettings = 0; ///< how many prompts there had been when the settings were opened last
};

} // namespace tessarel::sim
