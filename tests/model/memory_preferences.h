#pragma once

#include "model/preferences_port.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessarel {

/// In-memory `PreferencesPort` that counts writes and records the keys of rejected documents.
class MemoryPreferences : public PreferencesPort {
public:
    std::map<std::string, std::string, std::less<>> stored;
    std::vector<std::string> rejected;
    int writes = 0;

    std::optional<std::string> data(std::string_view key) override {
        const auto entry = stored.find(key);
        if (entry == stored.end())
            return std::nullopt;
        return entry->second;
    }

    void setData(std::string_view key, std::string_view bytes) override {
        ++writes;
        stored.insert_or_assign(std::string(key), std::string(bytes));
    }

    void keepRejected(std::string_view key) override { rejected.emplace_back(key); }
};

} // namespace tessarel
