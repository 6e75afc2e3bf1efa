// SPDX-License-Identifier: MIT

#pragma once

#include "model/settings/preferences_port.h"
#include "model/settings/store.h"
#include "model/subscription.h"
#include "ports/main_queue_port.h"

#include <chrono>
#include <functional>

namespace tessarel {

/// Takes up changes of the stored settings by other copies of the program and by editors at once, and
/// completes saves that the store has delayed.
class SettingsFollower {
public:
    /// How long a save waits for an editor to complete a document that cannot be decoded.
    static constexpr std::chrono::seconds kPatience{5};

    /// Starts with the event loop. Calls `taken` after changes have been taken up. All references must
    /// outlive the follower.
    SettingsFollower(Store& store, PreferencesPort& preferences, MainQueuePort& mainQueue,
                     std::function<void()> taken);
    SettingsFollower(const SettingsFollower&) = delete;
    SettingsFollower& operator=(const SettingsFollower&) = delete;
    /// Completes a delayed save, because no later event would trigger it.
    ~SettingsFollower();

private:
    void start(PreferencesPort& preferences);
    void take();
    void waitForEditor();

    Store& m_store;
    MainQueuePort& m_mainQueue;
    std::function<void()> m_taken;
    SubscriptionPtr m_start;
    SubscriptionPtr m_watch;
    SubscriptionPtr m_delays;
    SubscriptionPtr m_deadline; ///< of a delayed save; null if there is none
};

} // namespace tessarel
