// SPDX-License-Identifier: MIT

#pragma once

#include "model/signal.h"
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
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tessarel::sim {

/// Counts how often the alert sound would have been played.
class SimAlertSound : public AlertSoundPort {
public:
    void beep() override { ++beeps; }

    int beeps = 0;
};

/// A user who closes modal alerts at once, and other alerts when a test says so.
class SimAlerts : public AlertsPort {
public:
    SimAlerts();

    /// The returned subscription may outlive this object.
    [[nodiscard]] SubscriptionPtr show(const Alert& alert, Closed closed) override;
    void runModal(const Alert& alert) override;
    /// Returns the next of `texts`, `std::nullopt` if there is none.
    std::optional<std::string> runModalForText(const Alert& alert) override;

    /// Closes the alert that was opened last of those that stand, with the button at position `button` or,
    /// without one, in another way. Returns false if none stands.
    bool close(std::optional<std::size_t> button);
    /// Returns the alerts that stand, in the order in which they were opened.
    [[nodiscard]] std::vector<Alert> standing() const;

    std::function<void()> whileShown; ///< called while an alert is shown; may be empty
    std::vector<Alert> shown;         ///< all alerts in order, including those that ask for a text
    std::deque<std::string> texts;    ///< texts that the user will type and accept, next one first

private:
    struct Open {
        Alert alert;
        Closed closed;
    };

    std::shared_ptr<std::map<int, Open>> m_open; ///< by number; shared with subscriptions
    int m_lastNumber = 0;
};

/// Counts the requests to activate and to end the program.
class SimOwnApplication : public ApplicationPort {
public:
    void activate() override { ++activations; }
    void terminate() override { ++terminations; }

    int activations = 0;
    int terminations = 0;
};

/// Records the main menu that was set last.
class SimMainMenu : public MainMenuPort {
public:
    void setMainMenu(const std::vector<MainMenu>& newMenus) override { menus = newMenus; }

    std::vector<MainMenu> menus;
};

/// A user who chooses applications as a test has prescribed, and otherwise closes the panel.
class SimOpenPanel : public OpenPanelPort {
public:
    std::optional<std::string> chooseApplication(const std::string& prompt) override;

    std::vector<std::string> prompts; ///< prompts of all panels that were shown, in order
    /// Identifiers that the user will choose, next one first. An empty one closes the panel.
    std::deque<std::optional<std::string>> choices;
};

/// Records the URLs that would have been opened.
class SimOpenUrl : public OpenUrlPort {
public:
    bool open(const std::string& url) override {
        if (hasBrowser)
            opened.push_back(url);
        return hasBrowser;
    }

    bool hasBrowser = true;
    std::vector<std::string> opened; ///< in order
};

/// The permission to control other programs' windows, which a test grants and revokes.
class SimTrust : public TrustPort {
public:
    [[nodiscard]] bool isTrusted() override { return trusted; }
    /// Counts the call and, unless the program is trusted, the prompt that the user sees.
    void prompt() override {
        ++promptCalls;
        prompts += trusted ? 0 : 1;
    }
    [[nodiscard]] bool hasSettings() const override { return systemHasSettings; }
    [[nodiscard]] SubscriptionPtr onLost(std::function<void()> handler) override {
        return lost.connect(std::move(handler));
    }
    void openSettings() override {
        ++settingsOpened;
        promptsBeforeSettings = prompts;
    }

    Signal<> lost; ///< sent by tests when the program is not trusted any more
    bool trusted = true;
    bool systemHasSettings = true;
    int promptCalls = 0;           ///< calls of `prompt`, including those while trusted
    int prompts = 0;               ///< prompts that the user has seen
    int settingsOpened = 0;        ///< calls of `openSettings`
    int promptsBeforeSettings = 0; ///< value of `prompts` when the settings were opened last
};

} // namespace tessarel::sim
