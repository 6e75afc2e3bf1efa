// SPDX-License-Identifier: MIT

#pragma once

#include "engine/outcome.h"
#include "engine/permissions.h"
#include "engine/runtime.h"
#include "engine/window_engine.h"
#include "model/action_id.h"
#include "model/settings/store.h"

#include <cstddef>

namespace tessarel {

/// Runs actions on the window engine. Hot keys and menu commands both go through it.
class ActionRunner {
public:
    /// All arguments must outlive the runner.
    ActionRunner(WindowEngine& engine, const Store& store, Permissions& permissions, const Runtime& runtime);

    /// Runs `action` on the focused window. Does nothing while paused. Without permission, asks the user for
    /// it instead. The action of a disabled zone does nothing. Returns what became of it.
    Outcome run(ActionID action);

private:
    [[nodiscard]] Outcome dispatch(ActionID action);
    [[nodiscard]] Outcome snapToZone(std::size_t index);

    WindowEngine& m_engine;
    const Store& m_store;
    Permissions& m_permissions;
    const Runtime& m_runtime;
};

} // namespace tessarel
