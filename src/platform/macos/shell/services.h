// SPDX-License-Identifier: MIT

#pragma once

#include "ports/alert_sound_port.h"
#include "ports/login_item_port.h"
#include "ports/open_url_port.h"

#include <optional>
#include <string>

namespace tessarel::macos {

/// The alert sound that the user has chosen in the system's settings.
class MacAlertSound : public AlertSoundPort {
public:
    void beep() override;
};

/// Opens URLs through the workspace, in the user's default application for their scheme.
class MacOpenUrl : public OpenUrlPort {
public:
    /// Does nothing for text that is not a URL or has no scheme, and returns false.
    bool open(const std::string& url) override;
};

/// The application as a login item of the user. Works only for a signed bundle that is not moved afterwards.
class MacLoginItem : public LoginItemPort {
public:
    /// Returns `NotRegistered` also for a status that this version of the program does not know.
    [[nodiscard]] Status status() override;
    /// Returns the system's localised error text when it refuses, otherwise an empty optional.
    [[nodiscard]] std::optional<std::string> registerItem() override;
    /// Returns an empty optional, without a call to the system, when the item is not registered; otherwise
    /// like `registerItem`.
    [[nodiscard]] std::optional<std::string> unregisterItem() override;
};

} // namespace tessarel::macos
