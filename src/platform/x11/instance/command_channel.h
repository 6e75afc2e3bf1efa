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

/// Receives the commands of other processes on the same X screen, as the owner of the selection
/// "_TESSAREL_COMMANDS_S<screen>".
///
/// A sender sets "_TESSAREL_COMMAND" on a window of its own to the words of the command, with a NUL byte
/// after each, and converts the selection to that property, with that atom as the target. The answer replaces
/// the words: the exit code as one byte, then the text. Every client of the server can send commands; a
/// client could move the windows without us, too.
///
/// A selection that another client takes is taken back, or commands would no longer arrive. The other client
/// could do the same forever, so this happens at most `kMostReturns` times.
class CommandChannel {
public:
    using Run = std::function<CommandAnswer(const std::vector<std::string>& words)>;

    static constexpr int kMostReturns = 100;

    /// Calls `run` with the words of each command until this object is destroyed; a word may be empty and
    /// hold any bytes but NUL. Before the words have arrived, calls `readAhead`: what it reads from the
    /// server comes in the same round trip. `connection` must outlive this object.
    CommandChannel(
        Connection& connection, Run run, std::function<void()> readAhead = [] {});
    CommandChannel(const CommandChannel&) = delete;
    CommandChannel& operator=(const CommandChannel&) = delete;
    ~CommandChannel();

private:
    void claim(xcb_timestamp_t time);
    void handle(const Connection::Event& event);
    void takeBack(const xcb_selection_clear_event_t& loss);
    void answer(const xcb_selection_request_event_t& request);

    Connection& m_connection;
    Run m_run;
    std::function<void()> m_readAhead;
    xcb_window_t m_window;
    xcb_atom_t m_selection;
    int m_returns = 0; ///< how often the selection has been taken back
    SubscriptionPtr m_events;
};

} // namespace tessarel::x11
