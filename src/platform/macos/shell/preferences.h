// SPDX-License-Identifier: MIT

#pragma once

#include "model/settings/preferences_port.h"

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace tessarel::macos {

/// The application's own domain of the user defaults. The copy of a rejected value is stored under its key
/// with ".rejected" appended.
class MacPreferences : public PreferencesPort {
public:
    /// Returns an empty optional also for a value that is not of class NSData.
    [[nodiscard]] std::optional<std::string> data(std::string_view key) override;
    bool setData(std::string_view key, std::string_view bytes) override;
    void keepRejected(std::string_view key) override;
    /// Locks nothing: a user has one desktop, and with it one copy of the program.
    [[nodiscard]] SubscriptionPtr lock(std::string_view key) override;
    /// Returns null: the system reports changes by other programs only for keys without a dot.
    [[nodiscard]] SubscriptionPtr watch(std::string_view key, std::function<void()> changed) override;

private:
    std::set<std::string, std::less<>> m_rejected; ///< keys whose value the next `setData` copies first
};

} // namespace tessarel::macos
