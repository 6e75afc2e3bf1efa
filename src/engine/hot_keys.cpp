// SPDX-License-Identifier: MIT

#include "engine/hot_keys.h"

#include <algorithm>
#include <utility>

namespace tessarel {

HotKeys::HotKeys(HotKeyPort& port, ActionRunner& runner, const Store& store)
    : m_port(port), m_runner(runner), m_store(store),
      m_takenObserver(port.onTakenChange([this] { m_takenChange.send(); })) {}

void HotKeys::registerAll() {
    installHandler();
    // First, because our own earlier registrations would make the new ones fail.
    m_refs.clear();
    m_refs = m_port.registerHotKeys(requests());
    m_takenChange.send();
}

bool HotKeys::isTaken(ActionID action) const {
    const std::vector<std::uint32_t> taken = m_port.taken();
    return std::ranges::find(taken, static_cast<std::uint32_t>(ActionID::Case(action))) != taken.end();
}

void HotKeys::handle(std::uint32_t id) {
    if (id < ActionID::allCases.size())
        m_runner.run(ActionID::allCases[id]);
}

void HotKeys::installHandler() {
    if (m_installed)
        return;
    m_installed = true;
    m_handlerRef = m_port.installHandler([this](std::uint32_t id) { handle(id); });
}

std::vector<HotKeyRequest> HotKeys::requests() const {
    std::vector<HotKeyRequest> all;
    all.reserve(ActionID::allCases.size());
    for (std::uint32_t id = 0; id < ActionID::allCases.size(); ++id) {
        if (const auto wanted = request(id, ActionID::allCases[id]))
            all.push_back(*wanted);
    }
    return all;
}

/// Returns an empty value if the action has no hot key, or if its binding is outside the port's number range,
/// as in a hand-edited settings document.
std::optional<HotKeyRequest> HotKeys::request(std::uint32_t id, ActionID action) const {
    if (isOfDisabledZone(action))
        return {};
    const auto binding = m_store.binding(action);
    if (!binding || !std::in_range<std::uint32_t>(binding->keyCode) ||
        !std::in_range<std::uint32_t>(binding->mods))
        return {};
    return HotKeyRequest{static_cast<std::uint32_t>(binding->keyCode),
                         static_cast<std::uint32_t>(binding->mods),
                         {kSignature, id}};
}

bool HotKeys::isOfDisabledZone(ActionID action) const {
    const auto index = action.zoneIndex();
    const auto& zones = m_store.settings.zones;
    return index && (*index >= zones.size() || !zones[*index].enabled);
}

} // namespace tessarel
