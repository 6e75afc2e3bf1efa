// SPDX-License-Identifier: MIT

#pragma once

#include "ports/login_item_port.h"

#include <optional>
#include <string>

namespace tessarel::sim {

/// The login item of the simulated desktop.
class SimLoginItem : public LoginItemPort {
public:
    [[nodiscard]] Status status() override { return currentStatus; }
    [[nodiscard]] std::optional<std::string> registerItem() override {
        return change(statusAfterRegistering);
    }
    [[nodiscard]] std::optional<std::string> unregisterItem() override {
        return change(Status::NotRegistered);
    }

    Status currentStatus = Status::NotRegistered;
    /// The status that registering leads to. A system may require the user's approval first.
    Status statusAfterRegistering = Status::Enabled;
    /// The error text with which the system refuses any change; empty if it accepts them.
    std::optional<std::string> failure;

private:
    /// Changes the status unless the system refuses. Returns the error text.
    std::optional<std::string> change(Status status) {
        if (!failure)
            currentStatus = status;
        return failure;
    }
};

} // namespace tessarel::sim
