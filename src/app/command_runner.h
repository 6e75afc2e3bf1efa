// SPDX-License-Identifier: MIT

#pragma once

#include "app/command.h"
#include "engine/action_runner.h"
#include "engine/geo.h"
#include "engine/permissions.h"
#include "engine/runtime.h"
#include "model/settings/store.h"
#include "ports/desktop/displays_port.h"

#include <functional>
#include <string>
#include <vector>

namespace tessarel {

/// Carries out the commands of the command line in the running copy.
class CommandRunner {
public:
    /// What the runner reads and changes. All references must outlive it.
    struct Uses {
        ActionRunner& actions;
        const Geo& geo;
        const Permissions& permissions;
        const Runtime& runtime;
        const Store& store;
        DisplaysPort& displays;
        /// Makes these the user's zones, as the menu does.
        std::function<void(std::vector<Zone>)> applyZones;
        std::function<void(bool paused)> setPaused;
        std::function<void()> quit;
    };

    explicit CommandRunner(Uses uses);

    /// Carries out the command that `words` spell, and returns when the windows are in their place. The words
    /// may come from any program and are checked again. Never asks the user for the permission to move
    /// windows.
    [[nodiscard]] CommandReply run(const std::vector<std::string>& words);

private:
    [[nodiscard]] CommandReply carryOut(const command::RunAction& command);
    [[nodiscard]] CommandReply carryOut(const command::ApplyLayout& command);
    [[nodiscard]] CommandReply carryOut(const command::SetPause& command);
    [[nodiscard]] CommandReply carryOut(const command::Quit& command);
    [[nodiscard]] CommandReply carryOut(const command::List& command);

    Uses m_uses;
};

} // namespace tessarel
