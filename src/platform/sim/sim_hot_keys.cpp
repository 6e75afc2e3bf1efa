// SPDX-License-Identifier: MIT

#include "platform/sim/sim_hot_keys.h"

#include "model/binding.h"
#include "model/call_on_end.h"
#include "model/signal.h"

#include <map>
#include <set>
#include <utility>

namespace tessarel::sim {

namespace {

constexpr std::uint32_t kKeyCodes = 128;
constexpr std::uint32_t kModifiers = kCmdKey | kShiftKey | kOptKey | kCtrlKey;

/// Key code and modifiers.
using Combination = std::pair<std::uint32_t, std::uint32_t>;

bool isPossible(const Combination& combination) {
    return combination.first < kKeyCodes && (combination.second & ~kModifiers) == 0;
}

} // namespace

/// The claimed combinations and the installed handlers.
struct SimHotKeys::Keyboard {
    struct HotKey {
        HotKeyRequest request;
        bool isTaken = false;
    };

    [[nodiscard]] bool isLive(const Combination& combination) const {
        const auto found = ours.find(combination);
        return found != ours.end() && !found->second.isTaken;
    }

    std::map<Combination, HotKey> ours;
    std::set<Combination> others;
    Signal<std::uint32_t> handlers;
    Signal<> takenChange;
};

SimHotKeys::SimHotKeys() : m_keyboard(std::make_shared<Keyboard>()) {}

SubscriptionPtr SimHotKeys::installHandler(std::function<void(std::uint32_t id)> pressed) {
    ++m_handlersInstalled;
    return m_keyboard->handlers.connect(std::move(pressed));
}

std::vector<SubscriptionPtr> SimHotKeys::registerHotKeys(std::span<const HotKeyRequest> requests) {
    std::vector<SubscriptionPtr> claims;
    claims.reserve(requests.size());
    for (const HotKeyRequest& request : requests)
        claims.push_back(claim(request));
    return claims;
}

std::vector<std::uint32_t> SimHotKeys::taken() const {
    std::vector<std::uint32_t> ids;
    for (const auto& [combination, hotKey] : m_keyboard->ours) {
        if (hotKey.isTaken)
            ids.push_back(hotKey.request.hotKey.id);
    }
    return ids;
}

void SimHotKeys::retryTaken() {
    bool isChanged = false;
    for (auto& [combination, hotKey] : m_keyboard->ours) {
        const bool isFree = hotKey.isTaken && !m_keyboard->others.contains(combination);
        hotKey.isTaken = hotKey.isTaken && !isFree;
        isChanged = isChanged || isFree;
    }
    if (isChanged)
        m_keyboard->takenChange.send();
}

SubscriptionPtr SimHotKeys::onTakenChange(std::function<void()> changed) {
    return m_keyboard->takenChange.connect(std::move(changed));
}

bool SimHotKeys::press(std::uint32_t keyCode, std::uint32_t mods) {
    if (!m_keyboard->isLive({keyCode, mods}))
        return false;
    m_keyboard->handlers.send(m_keyboard->ours.at({keyCode, mods}).request.hotKey.id);
    return true;
}

SubscriptionPtr SimHotKeys::holdByAnotherProgram(std::uint32_t keyCode, std::uint32_t mods) {
    const Combination combination{keyCode, mods};
    if (!isPossible(combination) || m_keyboard->isLive(combination) ||
        !m_keyboard->others.insert(combination).second)
        return nullptr;
    return callOnEnd([keyboard = m_keyboard, combination] { keyboard->others.erase(combination); });
}

std::vector<HotKeyRequest> SimHotKeys::registered() const {
    std::vector<HotKeyRequest> requests;
    for (const auto& [combination, hotKey] : m_keyboard->ours) {
        if (!hotKey.isTaken)
            requests.push_back(hotKey.request);
    }
    return requests;
}

SubscriptionPtr SimHotKeys::claim(const HotKeyRequest& request) {
    const Combination combination{request.keyCode, request.mods};
    if (!isPossible(combination))
        return nullptr;
    const bool isTaken = m_keyboard->others.contains(combination);
    if (!m_keyboard->ours.try_emplace(combination, Keyboard::HotKey{request, isTaken}).second)
        return nullptr;
    return callOnEnd([keyboard = m_keyboard, combination] { keyboard->ours.erase(combination); });
}

} // namespace tessarel::sim
