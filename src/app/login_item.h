#pragma once

#include "ports/login_item_port.h"

#include <optional>
#include <string>

namespace tessarel {

/// Start of the program at login, for the user to turn on and off.
class LoginItem {
public:
    explicit LoginItem(LoginItemPort& loginItem) : m_loginItem(loginItem) {}

    /// False also while the system waits for the user's approval.
    [[nodiscard]] bool isEnabled() const { return m_loginItem.status() == LoginItemPort::Status::Enabled; }

    /// Turns it on or off; empty on success, else why not, for the user. Afterwards `isEnabled` tells what
    /// holds.
    [[nodiscard]] std::optional<std::string> set(bool enabled) {
        return enabled ? m_loginItem.registerItem() : m_loginItem.unregisterItem();
    }

private:
    LoginItemPort& m_loginItem;
};

} // namespace tessarel
