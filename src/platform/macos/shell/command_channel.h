// SPDX-License-Identifier: MIT

#pragma once

#include "model/subscription.h"
#include "ports/command_exchange.h"

#include <functional>
#include <string>
#include <vector>

namespace tessarel::macos {

/// Receives the commands of other processes of the same user session.
///
/// A sender posts the distributed notification "<bundle identifier>.command" with the words and a token of
/// its own, and receives ".answer" with the same token, the exit code and the text. Every process of the
/// session can post and receive both. So a command can do no more than the menu, and an answer holds nothing
/// secret.
class MacCommandChannel {
public:
    /// Calls `run` with the words of each command until this object is destroyed; a word may hold any text. A
    /// notification of any other form is ignored.
    explicit MacCommandChannel(std::function<CommandAnswer(const std::vector<std::string>& words)> run);

private:
    SubscriptionPtr m_requests;
};

/// Sends a command to the copy that runs in this user session, and runs the event loop of this process until
/// the answer has arrived, at most for `kCommandPatience`.
[[nodiscard]] SentCommand sendCommand(const std::vector<std::string>& words);

} // namespace tessarel::macos
