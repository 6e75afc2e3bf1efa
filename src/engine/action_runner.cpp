// SPDX-License-Identifier: MIT

#include "engine/action_runner.h"

namespace tessarel {

ActionRunner::ActionRunner(WindowEngine& engine, const Store& store, Permissions& permissions,
                           const Runtime& runtime)
    : m_engine(engine), m_store(store), m_permissions(permissions), m_runtime(runtime) {}

Outcome ActionRunner::run(ActionID action) {
    if (m_runtime.paused)
        return Outcome::Paused;
    if (!m_permissions.isTrusted()) {
        m_permissions.prompt();
        return Outcome::NotTrusted;
    }
    return dispatch(action);
}

Outcome ActionRunner::dispatch(ActionID action) {
    if (const auto index = action.zoneIndex())
        return snapToZone(*index);
    if (const auto zone = action.fixedZone())
        return m_engine.snapFocused(*zone, {});

    switch (action) {
    case ActionID::center:
        return m_engine.centerFocused();
    case ActionID::restore:
        return m_engine.restoreFocused();
    case ActionID::nextDisplay:
        return m_engine.moveFocusedToDisplay(+1);
    case ActionID::previousDisplay:
        return m_engine.moveFocusedToDisplay(-1);
    case ActionID::arrangeAll:
        return m_engine.arrangeAll();
    default:
        // Zone actions and fixed zones are handled above.
        return Outcome::NoWindow;
    }
}

Outcome ActionRunner::snapToZone(std::size_t index) {
    const auto& zones = m_store.settings.zones;
    if (index >= zones.size() || !zones[index].enabled)
        return Outcome::ZoneDisabled;
    return m_engine.snapFocused(zones[index], index);
}

} // namespace tessarel
