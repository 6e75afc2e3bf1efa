#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace tessarel {

/// Content of a modal message. All texts are plain: no markup, no mnemonics.
struct Alert {
    std::string messageText;
    std::string informativeText;
    /// Titles in order; the first button is the default.
    std::vector<std::string> buttons;
    /// Index of the button that is reported when the user closes the message without a button, for example
    /// with Esc, or when the program quits meanwhile. May be an index that no button has. Empty: the last
    /// button.
    std::optional<std::size_t> dismissedAs = std::nullopt;

    bool operator==(const Alert&) const = default;
};

/// Shows modal messages and waits for the user's choice.
class AlertsPort {
public:
    virtual ~AlertsPort() = default;

    /// Brings the program to the front, shows `alert` and returns the index of the button that closed it. The
    /// event loop goes on meanwhile, so the caller may be destroyed before this returns.
    virtual std::size_t runModal(const Alert& alert) = 0;

    /// Closes the message with this content, as if the user had closed it without a button. Does nothing if
    /// it is not shown.
    virtual void dismiss(const Alert& alert) = 0;

    /// Like `runModal`, with a text field that has the keyboard focus. Returns the text, untrimmed, if the
    /// first button closed the message; `std::nullopt` otherwise.
    virtual std::optional<std::string> runModalForText(const Alert& alert) = 0;
};

} // namespace tessarel
