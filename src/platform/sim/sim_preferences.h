#pragma once

#include "model/preferences_port.h"

#include <functional>
#include <map>
#include <set>
#include <string>

namespace tessarel::sim {

/// What is stored, for as long as the desktop lives.
struct SimPreferencesStorage {
    std::map<std::string, std::string, std::less<>> documents;
    std::map<std::string, std::string, std::less<>> rejected;
    int writes = 0;                     ///< how often a document has been stored
    std::function<void()> whileWriting; ///< what happens when one has just been stored; may be empty
};

/// The preferences of one run of the program.
class SimPreferences : public PreferencesPort {
public:
    explicit SimPreferences(SimPreferencesStorage& storage) : m_storage(storage) {}

    [[nodiscard]] std::optional<std::string> data(std::string_view key) override;
    void setData(std::string_view key, std::string_view bytes) override;
    void keepRejected(std::string_view key) override;

private:
    SimPreferencesStorage& m_storage;
    std::set<std::string, std::less<>> m_rejected;
};

} // namespace tessarel::sim
