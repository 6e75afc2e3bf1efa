#pragma once

#include "ports/hot_key_port.h"

#include <cstddef>
#include <map>
#include <memory>
#include <utility>

namespace tessarel::sim {

/// The hot keys of the simulated desktop, whose keyboard has the key codes 0 to 127.
class SimHotKeys : public HotKeyPort {
public:
    SimHotKeys();

    [[nodiscard]] SubscriptionPtr installHandler(std::function<void(std::uint32_t id)> pressed) override;
    [[nodiscard]] std::vector<SubscriptionPtr>
    registerHotKeys(std::span<const HotKeyRequest> requests) override;

    /// The user presses the keys; false when no hot key of this program is on them.
    bool press(std::uint32_t keyCode, std::uint32_t mods);
    /// Another program has the combination until the answer ends; null when it is taken.
    [[nodiscard]] SubscriptionPtr holdByAnotherProgram(std::uint32_t keyCode, std::uint32_t mods);

    /// The claims of this program that hold now, by combination.
    [[nodiscard]] std::vector<HotKeyRequest> registered() const;
    /// How many handlers have been installed so far.
    [[nodiscard]] int handlersInstalled() const { return m_handlersInstalled; }

private:
    struct Keyboard;

    [[nodiscard]] SubscriptionPtr claim(const HotKeyRequest& request, bool ours);

    std::shared_ptr<Keyboard> m_keyboard; // shared with claims, which may outlive this port
    int m_handlersInstalled = 0;
};

} // namespace tessarel::sim
