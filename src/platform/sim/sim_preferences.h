// SPDX-License-Identifier: MIT

#pragma once

#include "model/settings/preferences_port.h"
#include "model/signal.h"
#include "model/subscription.h"
#include "platform/sim/time/sim_clock.h"

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace tessarel::sim {

/// The stored documents of the simulated desktop. They outlive a run of the program.
struct SimPreferencesStorage {
    explicit SimPreferencesStorage(SimClock& loop) : clock(loop) {}

    /// Stores a document like an editor or another program, which takes no lock.
    void edit(std::string_view key, std::string_view bytes);

    /// Documents by key.
    std::map<std::string, std::string, std::less<>> documents;
    /// The last rejected document of each key.
    std::map<std::string, std::string, std::less<>> rejected;
    /// Keys that are locked. A test may add one as another copy that does not release it.
    std::set<std::string, std::less<>> locked;
    bool isFull = false;                ///< whether nothing more can be stored
    int writes = 0;                     ///< number of times that the program has stored a document
    std::function<void()> whileWriting; ///< called when a document has just been stored; may be empty

    SimClock& clock;                  ///< of the event loop that reports changes
    Signal<std::string_view> changed; ///< sent with the key of a document that has been stored
};

/// The preferences of one run of the program. `storage` must outlive them.
class SimPreferences : public PreferencesPort {
public:
    explicit SimPreferences(SimPreferencesStorage& storage) : m_storage(storage) {}

    [[nodiscard]] std::optional<std::string> data(std::string_view key) override;
    bool setData(std::string_view key, std::string_view bytes) override;
    void keepRejected(std::string_view key) override;
    [[nodiscard]] SubscriptionPtr lock(std::string_view key) override;
    [[nodiscard]] SubscriptionPtr watch(std::string_view key, std::function<void()> changed) override;

private:
    SimPreferencesStorage& m_storage;
    std::set<std::string, std::less<>> m_rejected; ///< keys whose documents the next `setData` keeps
};

} // namespace tessarel::sim
