#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace tessarel {

/// A modal message. Every text is shown as it stands: no markup, no mnemonics.
struct Alert {
    std::string messageText;
    std::string informativeText;
    std::vector<std::string> buttons; ///< in order; the first is the default
    /// The position of the button that closing it in another way counts as; none: the last.
    std::optional<std::size_t> dismissedAs = std::nullopt;

    bool operator==(const Alert&) const = default;
};

/// Messages that wait for the user.
class AlertsPort {
public:
    virtual ~AlertsPort() = default;

    /// Brings the program to the front, shows `alert` and returns the position of the button that closed it.
    virtual std::size_t runModal(const Alert& alert) = 0;

    /// The same with a line to type into, which has the keyboard at once: what was typed, as it stands, if
    /// the first button closed the message; none otherwise.
    virtual std::optional<std::string> runModalForText(const Alert& alert) = 0;
};

} // namespace tessarel
