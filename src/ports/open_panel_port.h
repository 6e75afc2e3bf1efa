// SPDX-License-Identifier: MIT

#pragma once

#include <optional>
#include <string>

namespace tessarel {

/// A dialog in which the user chooses something on this computer.
class OpenPanelPort {
public:
    virtual ~OpenPanelPort() = default;

    /// Shows the installed applications in a dialog whose confirm button is titled `prompt`, and returns the
    /// identifier of the chosen one. Returns `std::nullopt` if the user cancels, or chooses something that is
    /// not an application or has no identifier.
    virtual std::optional<std::string> chooseApplication(const std::string& prompt) = 0;
};

} // namespace tessarel
