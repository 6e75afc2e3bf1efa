#pragma once

#include <optional>
#include <string>

namespace tessarel {

/// A dialog in which the user picks something that is on this computer.
class OpenPanelPort {
public:
    virtual ~OpenPanelPort() = default;

    /// Shows the applications that are installed and returns the identifier of the one that the user has
    /// confirmed with the button called `prompt`. None when the user chose nothing, or something that is no
    /// application or has no identifier.
    virtual std::optional<std::string> chooseApplication(const std::string& prompt) = 0;
};

} // namespace tessarel
