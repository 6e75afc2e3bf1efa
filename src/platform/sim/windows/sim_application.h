// SPDX-License-Identifier: MIT

#pragma once

#include "platform/sim/windows/sim_window.h"
#include "ports/desktop/process_id.h"
#include "ports/main_queue_port.h"

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace tessarel::sim {

/// An application on the simulated desktop, and how it reacts to accessibility requests.
struct SimApplication {
    /// How long the system waits for a reply unless the program sets a limit.
    static constexpr MainQueuePort::Duration kTimeLimit = std::chrono::seconds(6);
    /// How long the move of a window takes while the enhanced interface is on.
    static constexpr MainQueuePort::Duration kAnimation = std::chrono::milliseconds(200);

    std::optional<std::string> bundleIdentifier = {};
    std::vector<std::string> otherNames = {};
    /// False for a panel or a helper in the background.
    bool isRegular = true;
    /// Subscriptions to its new windows are refused.
    bool refusesObservers = false;
    /// Whether windows are animated; empty if the application does not have the attribute.
    std::optional<bool> enhancedInterface = {};
    /// Writes of a position have no effect.
    bool refusesPosition = false;
    /// Writes of a size have no effect.
    bool refusesSize = false;
    /// Time until a reply. A request times out unless this is shorter than its limit.
    MainQueuePort::Duration answerTime = {};
    /// The process ends at the request after this many; empty for a process that does not end.
    std::optional<int> requestsUntilDeath = {};
    /// The window that gets the keyboard focus when the application comes to the front.
    std::optional<WindowId> focusedWindow = {};
    AttributeOverrides overrides = {};
};

} // namespace tessarel::sim
