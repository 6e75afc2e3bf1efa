#pragma once

#include "ports/alert_sound_port.h"
#include "ports/alerts_port.h"
#include "ports/open_url_port.h"
#include "ports/trust_port.h"

#include <cstddef>
#include <deque>
#include <string>
#include <vector>

namespace tessarel::sim {

/// Counts what would have been heard.
class SimAlertSound : public AlertSoundPort {
public:
    void beep() override { ++beeps; }

    int beeps = 0;
};

/// A user who answers messages as told beforehand, and with the last button when not told.
class SimAlerts : public AlertsPort {
public:
    std::size_t runModal(const Alert& alert) override;

    std::vector<Alert> shown;        ///< in order
    std::deque<std::size_t> answers; ///< buttons that the user will press, next one first
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
    void prompt() override { prompts += trusted ? 0 : 1; }
    void openSettings() override { ++settingsOpened; }

    bool trusted = true;
    int prompts = 0; ///< how often the user has been told what to do
    int settingsOpened = 0;
};

} // namespace tessarel::sim
