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
    Status statusAfterRegistering = Status::Enabled;
    std::optional<std::string> failure; ///< why the system refuses any change

private:
    std::optional<std::string> change(Status status) {
        if (!failure)
            currentStatus = status;
        return failure;
    }
};

} // namespace tessarel::sim
