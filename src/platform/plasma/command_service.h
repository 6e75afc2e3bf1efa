// SPDX-License-Identifier: MIT

#pragma once

#include "model/subscription.h"
#include "platform/wayland/bus_link.h"
#include "ports/command_exchange.h"

#include <functional>
#include <string>
#include <vector>

namespace tessarel::plasma {

/// Receives the commands of other processes of the session, as method calls "Run" of the session bus with
/// the words of the command. The answer is one string: the exit code as a digit, then the text. Every process
/// of the session can send commands; it could move the windows without us, too.
class CommandService {
public:
    /// Calls `run` with the words of each command until this object is destroyed. Commands longer than
    /// `kLongestCommand` get an empty answer. `link` must outlive this object, and own the name that
    /// `SingleInstance` claims.
    CommandService(wayland::BusLink& link,
                   std::function<CommandAnswer(const std::vector<std::string>& words)> run);
    CommandService(const CommandService&) = delete;
    CommandService& operator=(const CommandService&) = delete;
    ~CommandService() = default;

private:
    void handle(const wayland::BusMessage& call);

    wayland::BusLink& m_link;
    std::function<CommandAnswer(const std::vector<std::string>&)> m_run;
    SubscriptionPtr m_calls;
};

/// Sends a command to the copy on the bus, and waits for the answer at most `kCommandPatience`.
[[nodiscard]] SentCommand sendCommand(wayland::BusLink& link, const std::vector<std::string>& words);

} // namespace tessarel::plasma
