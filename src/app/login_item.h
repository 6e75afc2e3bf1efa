// SPDX-License-Identifier: MIT

#pragma once

#include "ports/login_item_port.h"

#include <optional>
#include <string>

namespace tessarel {

/// The user's setting whether the program starts at login.
class LoginItem {
public:
    explicit LoginItem(LoginItemPort& loginItem) : m_loginItem(loginItem) {}

    /// Returns whether the program starts at login. False while the system waits for the user's approval.
    [[nodiscard]] bool isEnabled() const { return m_loginItem.status() == LoginItemPort::Status::Enabled; }

    /// Turns the login item on or off. Returns `std::nullopt` on success, otherwise an error text for the
    /// user. `isEnabled` returns the resulting state.
    [[nodiscard]] std::optional<std::string> set(bool enabled) {
        return enabled ? m_loginItem.registerItem() : m_loginItem.unregisterItem();
    }

private:
    LoginItemPort& m_loginItem;
};

} // namespace tessarel
