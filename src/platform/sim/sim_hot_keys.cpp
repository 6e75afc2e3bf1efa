#include "platform/sim/sim_hot_keys.h"

#include "model/binding.h"
#include "model/call_on_end.h"
#include "model/signal.h"

namespace tessarel::sim {

namespace {

constexpr std::uint32_t kKeyCodes = 128;
constexpr std::uint32_t kModifiers = kCmdKey | kShiftKey | kOptKey | kCtrlKey;

} // namespace

/// The claimed combinations and the installed handlers.
struct SimHotKeys::Keyboard {
    struct Claim {
        HotKeyRequest request;
        bool ours = false; ///< false for a combination that another program holds
    };
    /// Key code and modifiers.
    using Combination = std::pair<std::uint32_t, std::uint32_t>;

    std::map<Combination, Claim> claims;
    Signal<std::uint32_t> handlers;
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
        claims.push_back(claim(request, true));
    return claims;
}

bool SimHotKeys::press(std::uint32_t keyCode, std::uint32_t mods) {
    const auto found = m_keyboard->claims.find({keyCode, mods});
    if (found == m_keyboard->claims.end() || !found->second.ours)
        return false;
    m_keyboard->handlers.send(found->second.request.hotKey.id);
    return true;
}

SubscriptionPtr SimHotKeys::holdByAnotherProgram(std::uint32_t keyCode, std::uint32_t mods) {
    return claim({keyCode, mods, {}}, false);
}

std::vector<HotKeyRequest> SimHotKeys::registered() const {
    std::vector<HotKeyRequest> requests;
    for (const auto& [combination, claim] : m_keyboard->claims) {
        if (claim.ours)
            requests.push_back(claim.request);
    }
    return requests;
}

SubscriptionPtr SimHotKeys::claim(const HotKeyRequest& request, bool ours) {
    const Keyboard::Combination combination{request.keyCode, request.mods};
    if (request.keyCode >= kKeyCodes || (request.mods & ~kModifiers) != 0)
        return nullptr;
    if (!m_keyboard->claims.try_emplace(combination, Keyboard::Claim{request, ours}).second)
        return nullptr;
    return callOnEnd([keyboard = m_keyboard, combination] { keyboard->claims.erase(combination); });
}

} // namespace tessarel::sim
