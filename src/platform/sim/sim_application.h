#pragma once

#include "platform/sim/sim_window.h"
#include "ports/main_queue_port.h"
#include "ports/process_id.h"

#include <chrono>
#include <optional>
#include <string>

namespace tessarel::sim {

/// A program on the simulated desktop, and how it treats whoever asks it for something.
struct SimApplication {
    /// How long the system waits for an application before it gives up.
    static constexpr MainQueuePort::Duration kTimeLimit = std::chrono::seconds(6);
    /// How long a window is on its way when a program with the enhanced interface on moves it.
    static constexpr MainQueuePort::Duration kAnimation = std::chrono::milliseconds(200);

    std::optional<std::string> bundleIdentifier = {};
    bool isRegular = true;                      ///< false: a panel, or a helper in the background
    bool refusesObservers = false;              ///< nobody hears of its windows
    std::optional<bool> enhancedInterface = {}; ///< empty: it has no such attribute
    bool refusesPosition = false;
    bool refusesSize = false;
    MainQueuePort::Duration answerTime = {};    ///< from `kTimeLimit` on it never answers anybody
    std::optional<int> requestsUntilDeath = {}; ///< it answers so many reads and writes, then ends
    std::optional<WindowId> focusedWindow = {};
    AttributeOverrides overrides = {};
};

} // namespace tessarel::sim
