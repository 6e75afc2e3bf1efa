#pragma once

#include "ports/alert_sound_port.h"
#include "ports/login_item_port.h"
#include "ports/open_url_port.h"

#include <optional>
#include <string>

namespace tessarel::macos {

/// The alert sound that the user has chosen.
class MacAlertSound : public AlertSoundPort {
public:
    void beep() override;
};

/// Addresses, opened by the workspace.
class MacOpenUrl : public OpenUrlPort {
public:
    void open(const std::string& url) override;
};

/// The application itself as a login item. Needs a signed bundle in a place that stays.
class MacLoginItem : public LoginItemPort {
public:
    [[nodiscard]] Status status() override;
    [[nodiscard]] std::optional<std::string> registerItem() override;
    [[nodiscard]] std::optional<std::string> unregisterItem() override;
};

} // namespace tessarel::macos
