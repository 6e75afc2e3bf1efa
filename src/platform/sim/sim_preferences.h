#pragma once

#include "model/preferences_port.h"

#include <functional>
#include <map>
#include <set>
#include <string>

namespace tessarel::sim {

/// The stored documents of the simulated desktop. They outlive a run of the program.
struct SimPreferencesStorage {
    /// Documents by key.
    std::map<std::string, std::string, std::less<>> documents;
    /// The last rejected document of each key.
    std::map<std::string, std::string, std::less<>> rejected;
    int writes = 0;                     ///< number of times that a document has been stored
    std::function<void()> whileWriting; ///< called when a document has just been stored; may be empty
};

/// The preferences of one run of the program. `storage` must outlive them.
class SimPreferences : public PreferencesPort {
public:
    explicit SimPreferences(SimPreferencesStorage& storage) : m_storage(storage) {}

    [[nodiscard]] std::optional<std::string> data(std::string_view key) override;
    void setData(std::string_view key, std::string_view bytes) override;
    void keepRejected(std::string_view key) override;

private:
    SimPreferencesStorage& m_storage;
    std::set<std::string, std::less<>> m_rejected; ///< keys whose documents the next `setData` keeps
};

} // namespace tessarel::sim
