// SPDX-License-Identifier: MIT

#include "app/settings_follower.h"

#include <utility>

namespace tessarel {

SettingsFollower::SettingsFollower(Store& store, PreferencesPort& preferences, MainQueuePort& mainQueue,
                                   std::function<void()> taken)
    : m_store(store), m_mainQueue(mainQueue), m_taken(std::move(taken)),
      m_start(mainQueue.async([this, &preferences] { start(preferences); })),
      m_delays(store.saveDelayed.connect([this] { waitForEditor(); })) {}

SettingsFollower::~SettingsFollower() {
    m_delays.reset();
    m_store.saveOverBroken();
}

void SettingsFollower::start(PreferencesPort& preferences) {
    m_watch = preferences.watch(Store::key, [this] { take(); });
    take(); // what has changed since the store was loaded
}

void SettingsFollower::take() {
    if (m_store.takeStored())
        m_taken();
}

void SettingsFollower::waitForEditor() {
    if (m_deadline)
        return;
    m_deadline = m_mainQueue.asyncAfter(kPatience, [this] {
        m_deadline.reset(); // the document may be broken in another way by now, which starts the wait anew
        m_store.saveOverBroken();
    });
}

} // namespace tessarel
