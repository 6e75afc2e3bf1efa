// SPDX-License-Identifier: MIT

#pragma once

#include "model/call_on_end.h"
#include "model/settings/preferences_port.h"

#include <functional>
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
    bool isFull = false;
    bool isLockedByAnother = false;
    int writes = 0;
    int locks = 0; ///< held now
    int locksTaken = 0;

    std::optional<std::string> data(std::string_view key) override {
        const auto entry = stored.find(key);
        if (entry == stored.end())
            return std::nullopt;
        return entry->second;
    }

    bool setData(std::string_view key, std::string_view bytes) override {
        if (isFull)
            return false;
        ++writes;
        stored.insert_or_assign(std::string(key), std::string(bytes));
        return true;
    }

    void keepRejected(std::string_view key) override { rejected.emplace_back(key); }

    SubscriptionPtr lock(std::string_view /*key*/) override {
        if (isLockedByAnother)
            return nullptr;
        ++locks;
        ++locksTaken;
        return callOnEnd([this] { --locks; });
    }

    SubscriptionPtr watch(std::string_view /*key*/, std::function<void()> /*changed*/) override {
        return nullptr;
    }
};

} // namespace tessarel
