// SPDX-License-Identifier: MIT

#pragma once

#include "model/subscription.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tessarel {

/// Content of a message. All texts are plain: no markup, no mnemonics.
struct Alert {
    std::string messageText;
    std::string informativeText;
    /// Titles in order; the first button is the default.
    std::vector<std::string> buttons;

    bool operator==(const Alert&) const = default;
};

/// Shows messages and reports the user's choice.
class AlertsPort {
public:
    /// Called with the index of the button that closed a message; `std::nullopt` if it was closed in another
    /// way, for example with Esc.
    using Closed = std::function<void(std::optional<std::size_t> button)>;

    virtual ~AlertsPort() = default;

    /// Shows `alert` in front and returns. The user may go on using the program's menu and other windows.
    /// Calls `closed` once the user has closed the message, from the event loop. Destroying the returned
    /// subscription removes the message without a call; so does the end of the event loop.
    [[nodiscard]] virtual SubscriptionPtr show(const Alert& alert, Closed closed) = 0;

    /// Shows `alert` in front of the settings window and returns when it has been closed. The event loop goes
    /// on meanwhile, but the settings window accepts no input.
    virtual void runModal(const Alert& alert) = 0;

    /// Like `runModal`, with a text field that has the keyboard focus. Returns the text, untrimmed, if the
    /// first button closed the message; `std::nullopt` otherwise.
    virtual std::optional<std::string> runModalForText(const Alert& alert) = 0;
};

} // namespace tessarel
