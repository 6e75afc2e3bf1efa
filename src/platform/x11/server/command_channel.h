// SPDX-License-Identifier: MIT

#pragma once

#include "model/subscription.h"
#include "platform/x11/server/connection.h"
#include "ports/command_exchange.h"

#include <xcb/xcb.h>

#include <functional>
#include <string>
#include <vector>

namespace tessarel::x11 {

/// Receives the commands of other processes on the same X screen.
///
/// The channel has a window, whose id stands in "_TESSAREL_COMMANDS" of the root window and of the window
/// itself. A sender sets "_TESSAREL_COMMAND" on a window of its own to the words of the command, separated by
/// NUL bytes, and sends the channel's window a client message of that type with the id of its window. The
/// answer arrives as "_TESSAREL_ANSWER" on the sender's window: the exit code as one byte, then the text.
/// Every client of the server can send commands; a client could move the windows without us, too.
class CommandChannel {
public:
    /// Calls `run` with the words of each command until this object is destroyed; a word may be empty and
    /// hold any bytes but NUL. `connection` must outlive this object.
    CommandChannel(Connection& connection,
                   std::function<CommandAnswer(const std::vector<std::string>& words)> run);
    CommandChannel(const CommandChannel&) = delete;
    CommandChannel& operator=(const CommandChannel&) = delete;
    ~CommandChannel();

private:
    void handle(const Connection::Event& event);

    Connection& m_connection;
    std::function<CommandAnswer(const std::vector<std::string>&)> m_run;
    xcb_window_t m_window;
    SubscriptionPtr m_events;
};

/// Sends a command to the channel of the screen, and waits for the answer at most `kCommandPatience`. A word
/// ends at its first NUL byte.
[[nodiscard]] SentCommand sendCommand(Connection& connection, const std::vector<std::string>& words);

} // namespace tessarel::x11
