// SPDX-License-Identifier: MIT

#pragma once

#include "model/call_on_end.h"
#include "model/settings/preferences_port.h"
#include "platform/sim/sim_desktop.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace tessarel {

/// A simulated desktop that keeps a journal of what an engine does to it, in order: attribute writes, alert
/// sounds, saved documents, hot keys and prompts.
class JournalDesktop : public sim::SimDesktop {
public:
    JournalDesktop();

    /// Calls `incident` right after the `number`-th attribute write from now on; 1 is the next write.
    void afterWrite(int number, std::function<void(JournalDesktop&)> incident);
    void withoutIncident() { m_writesUntilIncident = 0; }

    /// Returns the entries since the last call, followed by the reads of `AXWindows` in that time.
    [[nodiscard]] std::vector<std::string> takeJournal();

    [[nodiscard]] bool isOpen(sim::WindowId window) {
        return accessibility().pid(element(window)).has_value();
    }
    [[nodiscard]] bool isRunning(ProcessId pid) { return workspace().runningApplication(pid).has_value(); }

    // Ports that write to the journal. All other ports are those of `SimDesktop`.
    [[nodiscard]] AlertSoundPort& journalAlertSound() { return m_journalAlertSound; }
    [[nodiscard]] HotKeyPort& journalHotKeys() { return m_journalHotKeys; }
    [[nodiscard]] PreferencesPort& journalPreferences() { return m_journalPreferences; }
    [[nodiscard]] TrustPort& journalTrust() { return m_journalTrust; }

private:
    struct AlertSound : AlertSoundPort {
        explicit AlertSound(JournalDesktop& owner) : desktop(owner) {}
        void beep() override { desktop.m_journal.emplace_back("beep"); }
        JournalDesktop& desktop;
    };
    struct HotKeys : HotKeyPort {
        explicit HotKeys(JournalDesktop& owner) : desktop(owner) {}
        [[nodiscard]] SubscriptionPtr installHandler(std::function<void(std::uint32_t id)> pressed) override;
        [[nodiscard]] std::vector<SubscriptionPtr>
        registerHotKeys(std::span<const HotKeyRequest> requests) override;
        [[nodiscard]] std::vector<std::uint32_t> taken() const override { return desktop.hotKeys().taken(); }
        void retryTaken() override { desktop.hotKeys().retryTaken(); }
        [[nodiscard]] SubscriptionPtr onTakenChange(std::function<void()> changed) override {
            return desktop.hotKeys().onTakenChange(std::move(changed));
        }
        JournalDesktop& desktop;
    };
    struct Preferences : PreferencesPort {
        explicit Preferences(JournalDesktop& owner) : desktop(owner) {}
        [[nodiscard]] std::optional<std::string> data(std::string_view /*key*/) override { return document; }
        bool setData(std::string_view key, std::string_view bytes) override;
        void keepRejected(std::string_view /*key*/) override {}
        [[nodiscard]] SubscriptionPtr lock(std::string_view /*key*/) override {
            return callOnEnd([] {});
        }
        [[nodiscard]] SubscriptionPtr watch(std::string_view /*key*/,
                                            std::function<void()> /*changed*/) override {
            return {};
        }
        JournalDesktop& desktop;
        std::optional<std::string> document;
    };
    struct Trust : TrustPort {
        explicit Trust(JournalDesktop& owner) : desktop(owner) {}
        [[nodiscard]] bool isTrusted() override { return desktop.trust().trusted; }
        void prompt() override { desktop.m_journal.emplace_back("prompt"); }
        [[nodiscard]] SubscriptionPtr onLost(std::function<void()> /*lost*/) override { return {}; }
        [[nodiscard]] bool hasSettings() const override { return true; }
        void openSettings() override { desktop.m_journal.emplace_back("open settings"); }
        JournalDesktop& desktop;
    };

    void written(const std::string& line);

    std::vector<std::string> m_journal;
    std::function<void(JournalDesktop&)> m_incident;
    int m_writesUntilIncident = 0;
    AlertSound m_journalAlertSound{*this};
    HotKeys m_journalHotKeys{*this};
    Preferences m_journalPreferences{*this};
    Trust m_journalTrust{*this};
};

} // namespace tessarel
